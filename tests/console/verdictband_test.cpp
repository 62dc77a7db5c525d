#include "console/verdictband.h"

#include <gtest/gtest.h>

#include <QVBoxLayout>

#include "console/fittedtext.h"

namespace {

using Kind = CSentence::Kind;

/// Window sizes that must do, and the longest that there is to say, in both languages.
constexpr std::array SIZES = {QSize(800, 480), QSize(1024, 768), QSize(1920, 1080), QSize(3840, 2160)};
const std::array SENTENCES = {
    CSentence{Kind::eOver,
              "Over target: plane 1: 107.3 of 100 µm/s (was 1200); plane 2: 82.0 of 100 µm/s (was "
              "1300), within target",
              "Re-balance makes a finer correction, Finish keeps the result as it is."},
    CSentence{Kind::eFailed,
              "Nicht gespeichert. Über dem Ziel: Ebene 1: 107.3 von 100 µm/s (vorher 1200); Ebene 2: 82.0 "
              "von 100 µm/s (vorher 1300), im Ziel",
              "Die Meldung sagt, warum: Ursache beheben, dann noch einmal „Fertig“ drücken."},
    CSentence{Kind::eWithin, "Saved. Within target: 1.1 of 5 µm/s (was 120)",
              "saved 22.11.2026 13:05 in configuration \"A wheel with a long name\" of "
              "/home/operator/.local/share/corvane/rotor/prebal.db"},
    CSentence{Kind::eProgress, "Averaging, 62 of 100, 1.9 s left", ""},
};

/// In a window, as the band's height is a share of it.
class VerdictBandTest : public testing::Test {
protected:
    VerdictBandTest() {
        auto* pColumn = new QVBoxLayout(&m_Window);
        pColumn->addStretch(1);
        m_pBand = new CVerdictBand(&m_Window);
        pColumn->addWidget(m_pBand);
    }
    QImage Grab() { return m_pBand->grab().toImage(); }

    QWidget m_Window;
    CVerdictBand* m_pBand = nullptr;
};

}  // namespace

TEST_F(VerdictBandTest, NothingIsCutOffInAnySizeOfTheWindow) {
    for (const QSize Size : SIZES) {
        m_Window.resize(Size);
        m_Window.show();
        for (const CSentence& rSentence : SENTENCES) {
            m_pBand->Show(rSentence);
            m_Window.layout()->activate();
            EXPECT_TRUE(m_pBand->IsAllShown()) << Size.width() << " wide: " << rSentence.m_Text;
        }
    }
}

TEST_F(VerdictBandTest, ItsHeightDoesNotChangeWithWhatItSays) {
    m_Window.resize(1024, 768);
    m_Window.show();
    m_pBand->Show(SENTENCES[0]);
    m_Window.layout()->activate();
    const int Height = m_pBand->height();
    m_pBand->Show(SENTENCES[3]);
    m_Window.layout()->activate();
    EXPECT_EQ(m_pBand->height(), Height);
    EXPECT_EQ(Height, 96);
}

TEST_F(VerdictBandTest, WithNothingToSayItIsGone) {
    EXPECT_TRUE(m_pBand->isHidden());
    m_pBand->Show(SENTENCES[0]);
    EXPECT_FALSE(m_pBand->isHidden());
    m_pBand->Show({});
    EXPECT_TRUE(m_pBand->isHidden());
}

TEST_F(VerdictBandTest, WhatIsMissingComesBeforeAnySentence) {
    m_pBand->Show(SENTENCES[3]);
    m_pBand->ShowMissing("No connection");
    EXPECT_EQ(m_pBand->GetText(), "No connection");
    EXPECT_TRUE(m_pBand->GetDetail().isEmpty());
    m_pBand->ShowMissing("");
    EXPECT_EQ(m_pBand->GetText(), "Averaging, 62 of 100, 1.9 s left");
}

TEST_F(VerdictBandTest, ScreenReadersHearWhatItSays) {
    m_pBand->Show(SENTENCES[0]);
    EXPECT_EQ(m_pBand->accessibleName().toStdString(), SENTENCES[0].m_Text);
    EXPECT_EQ(m_pBand->accessibleDescription().toStdString(), SENTENCES[0].m_Detail);
}

// Colours alone say nothing to some: symbols differ, too.
TEST_F(VerdictBandTest, KindsDifferInSymbolAndColour) {
    m_Window.resize(1024, 768);
    m_Window.show();
    std::vector<QImage> Symbols;
    for (const Kind Value :
         {Kind::eProgress, Kind::eWaiting, Kind::eReady, Kind::eWithin, Kind::eOver, Kind::eFailed}) {
        m_pBand->Show({Value, "same words", ""});
        m_Window.layout()->activate();
        // Ink or not, whatever the colours.
        const QImage Square = Grab().copy(0, 0, m_pBand->height(), m_pBand->height());
        Symbols.push_back(Square.convertToFormat(QImage::Format_Mono, Qt::ThresholdDither));
        Symbols.back().setColorTable({0xff000000, 0xffffffff});
        if (Square.pixelColor(0, 0).lightness() < 128) {
            Symbols.back().invertPixels();
        }
    }
    for (std::size_t i = 0; i < Symbols.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_NE(Symbols[i], Symbols[j]) << i << " and " << j;
        }
    }
}

TEST(FittedText, IsAsLargeAsItsPlaceAllows) {
    const QFont Small = FitFont("one two three", QSize(200, 40), QFont(), 10, 100);
    EXPECT_TRUE(FitsPlace("one two three", QSize(200, 40), Small));
    QFont Larger(Small);
    Larger.setPixelSize(Small.pixelSize() + 1);
    EXPECT_FALSE(FitsPlace("one two three", QSize(200, 40), Larger));
    EXPECT_EQ(FitFont("x", QSize(400, 400), QFont(), 10, 100).pixelSize(), 100);
    EXPECT_EQ(FitFont("does not fit at all", QSize(20, 10), QFont(), 10, 100).pixelSize(), 10);
}
