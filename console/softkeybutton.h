#pragma once
#include <QPushButton>

/// A softkey as it is drawn: its place ("F1") and symbol above, the text below, broken into as many lines as
/// it takes. Where even that isn't enough, the letters get smaller: nothing is ever cut off.
class CSoftkeyButton : public QPushButton {
public:
    CSoftkeyButton(const QString& rCaption, QWidget* pParent);

    /// An empty label is an empty place.
    void Show(const QString& rLabel, const QString& rSymbol, bool bEnabled);
    /// Height of the letters where there is room for them, pixels.
    void SetLetters(int Pixels);

    /// Where the text has to go.
    QRect GetTextPlace() const;
    /// What it takes there.
    QSize GetTextSize() const;
    /// The letters that it is drawn with; smaller than wanted if there is no room for those.
    QFont GetTextFont() const;

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    /// A press counts where it began: who slides off the key and back hasn't pressed it again.
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    int GetCaptionHeight() const;
    QFont MakeFont(double Pixels) const;

    QString m_Caption;
    QString m_Symbol;
    int m_Letters = 12;
};
