#pragma once
#include <QToolButton>

/// A part of the head line: a symbol, a small line and one in bold below it, or one text in two lines. What
/// is too long ends in "…": a press tells it whole.
class CHeadButton : public QToolButton {
public:
    explicit CHeadButton(QWidget* pParent);

    void Show(const QString& rSmall, const QString& rLarge, const QIcon& rSymbol = {});
    void SetLetters(int Pixels);
    /// What is drawn of the texts, and whether that is all of them.
    bool IsWhole() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    QFont MakeFont(bool bLarge) const;
    int GetRoom() const;

    QString m_Small;
    QString m_Large;
    QIcon m_Symbol;
    int m_Letters = 12;
};
