#pragma once
#include <QRect>
#include <QWidget>

#include "console/runverdict.h"

class QPalette;

/// The band below the page, to be read from two metres: how the measurement gets on, the verdict, whether the
/// result is saved; or what is missing while there is no module to talk to. Always a symbol, words and a
/// colour. Its height goes with the window's, and doesn't change with what it says; with nothing to say it
/// is hidden.
class CVerdictBand : public QWidget {
public:
    explicit CVerdictBand(QWidget* pParent = nullptr);

    void Show(const CSentence& rSentence);
    /// Why nothing can be run; empty: nothing is missing. Comes before any sentence.
    void ShowMissing(const QString& rText);

    /// What it says at present.
    QString GetText() const;
    QString GetDetail() const;
    /// Whether all of it can be read in the band's present size.
    bool IsAllShown() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    /// Where symbol and texts go, and how large.
    struct CLayout {
        QRect m_Symbol;
        QRect m_Text;
        QRect m_Detail;
        QFont m_TextFont;
        QFont m_DetailFont;
    };
    CLayout LayOut() const;
    int GetBandHeight() const;
    void Refresh();

    CSentence m_Sentence;
    QString m_Missing;
};
