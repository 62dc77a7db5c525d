// Every label and every key of the window has room for its text, none lies over another, and each control
// says to a screen reader what it is: in all states, sizes and languages.
#include <gtest/gtest.h>

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QToolButton>
#include <set>

#include "console/headbutton.h"
#include "console/pagecover.h"
#include "console/pageoverlay.h"
#include "console/softkeybar.h"
#include "console/softkeybutton.h"
#include "console/verdictband.h"
#include "platform/qt/windowview.h"
#include "tests/support/testpaths.h"
#include "tests/windows/windowstates.h"

namespace {

constexpr int FINGER = 45;  // 12 mm at 96 dpi

template <typename T>
bool Is(const QObject& rObject) {
    return dynamic_cast<const T*>(&rObject) != nullptr;
}

/// The module's page and the pages of its help have tests of their own.
bool IsOfPage(const CMainWindow& rWindow, const QWidget& rWidget) {
    for (const QWidget* pAbove = &rWidget; pAbove != nullptr && pAbove != &rWindow;
         pAbove = pAbove->parentWidget()) {
        if (Is<CWindowView>(*pAbove) || (Is<CPageCover>(*pAbove) && pAbove != rWidget.parentWidget())) {
            return true;
        }
    }
    return false;
}

QString GetText(const QWidget& rWidget) {
    if (const auto* const pLabel = dynamic_cast<const QLabel*>(&rWidget)) {
        return pLabel->text();
    }
    if (const auto* const pButton = dynamic_cast<const QAbstractButton*>(&rWidget)) {
        return pButton->text();
    }
    if (const auto* const pChoice = dynamic_cast<const QComboBox*>(&rWidget)) {
        return pChoice->currentText();
    }
    const auto* const pNumber = dynamic_cast<const QAbstractSpinBox*>(&rWidget);
    return pNumber == nullptr ? QString() : pNumber->text();
}

/// Where the text of a control goes, without frame, symbol and arrow.
QSize GetRoom(const QWidget& rWidget) {
    const QStyle& rStyle = *rWidget.style();
    if (Is<QLabel>(rWidget)) {
        return rWidget.contentsRect().size();
    }
    if (const auto* const pButton = dynamic_cast<const QPushButton*>(&rWidget)) {
        QStyleOptionButton Option;
        Option.initFrom(pButton);
        const QSize Room = rStyle.subElementRect(QStyle::SE_PushButtonContents, &Option, pButton).size();
        return Room - QSize(pButton->icon().isNull() ? 0 : pButton->iconSize().width() + 4, 0);
    }
    if (const auto* const pButton = dynamic_cast<const QToolButton*>(&rWidget)) {
        constexpr int FRAME = 6;
        const bool bBelow = pButton->toolButtonStyle() == Qt::ToolButtonTextUnderIcon;
        return pButton->size() - QSize(FRAME, FRAME + (bBelow ? pButton->iconSize().height() : 0));
    }
    if (const auto* const pChoice = dynamic_cast<const QComboBox*>(&rWidget)) {
        QStyleOptionComboBox Option;
        Option.initFrom(pChoice);
        const QSize Room =
            rStyle.subControlRect(QStyle::CC_ComboBox, &Option, QStyle::SC_ComboBoxEditField, pChoice).size();
        const bool bIcon = !pChoice->itemIcon(pChoice->currentIndex()).isNull();
        return Room - QSize(bIcon ? pChoice->iconSize().width() + 4 : 0, 0);
    }
    return rWidget.findChild<QLineEdit*>()->contentsRect().size();
}

bool HasRoomForText(const QWidget& rWidget) {
    const QString Text = GetText(rWidget);
    if (Text.isEmpty()) {
        return true;
    }
    const QSize Room = GetRoom(rWidget);
    const auto* const pLabel = dynamic_cast<const QLabel*>(&rWidget);
    const int Wrap = pLabel != nullptr && pLabel->wordWrap() ? Qt::TextWordWrap : 0;
    const QSize Needed =
        rWidget.fontMetrics().boundingRect(QRect(0, 0, Room.width(), 10000), Wrap, Text).size();
    // A label knows best how close its lines stand.
    const int nHeight = Wrap != 0 ? pLabel->heightForWidth(pLabel->width()) : Needed.height();
    return Needed.width() <= Room.width() && nHeight <= Room.height();
}

class CChecker {
public:
    CChecker(std::string Where, CWindowStage& rStage) : m_Where(std::move(Where)), m_rStage(rStage) {}

    void Check() {
        CMainWindow& rWindow = m_rStage.GetWindow();
        for (QWidget* const pWidget : rWindow.findChildren<QWidget*>()) {
            if (pWidget->isVisible() && !IsOfPage(rWindow, *pWidget)) {
                CheckText(*pWidget);
                CheckPlace(*pWidget);
                CheckControl(*pWidget);
            }
        }
        for (const CSoftkeyBar::CLabelPlace& rLabel : m_rStage.Find<CSoftkeyBar>().MeasureLabels()) {
            EXPECT_TRUE(rLabel.m_Size.width() <= rLabel.m_Place.width() &&
                        rLabel.m_Size.height() <= rLabel.m_Place.height())
                << m_Where << ": softkey " << rLabel.m_Text.toStdString();
        }
        const auto& rBand = m_rStage.Find<CVerdictBand>();
        EXPECT_TRUE(!rBand.isVisible() || rBand.IsAllShown())
            << m_Where << ": band " << rBand.GetText().toStdString() << " / "
            << rBand.GetDetail().toStdString();
    }

private:
    static std::string Name(const QWidget& rWidget) {
        return std::string(rWidget.metaObject()->className()) + " \"" + GetText(rWidget).toStdString() +
               "\" (" + rWidget.accessibleName().toStdString() + ") in " +
               rWidget.parentWidget()->metaObject()->className();
    }
    void CheckText(const QWidget& rWidget) const {
        // These measure themselves, or may end in "…": a press tells the whole.
        if (Is<CHeadButton>(rWidget) || Is<CSoftkeyButton>(rWidget)) {
            return;
        }
        if (Is<QLabel>(rWidget) || Is<QAbstractButton>(rWidget) || Is<QComboBox>(rWidget) ||
            Is<QAbstractSpinBox>(rWidget)) {
            EXPECT_TRUE(HasRoomForText(rWidget))
                << m_Where << ": " << Name(rWidget) << " has " << GetRoom(rWidget).width() << "x"
                << GetRoom(rWidget).height();
        }
    }
    void CheckPlace(const QWidget& rWidget) const {
        const QWidget* const pParent = rWidget.parentWidget();
        // What is scrolled lies outside on purpose.
        if (pParent->objectName() == "qt_scrollarea_viewport" || rWidget.isWindow()) {
            return;
        }
        EXPECT_TRUE(pParent->rect().contains(rWidget.geometry()))
            << m_Where << ": " << Name(rWidget) << " lies outside of " << Name(*pParent);
        for (const QObject* const pChild : pParent->children()) {
            const auto* const pOther = qobject_cast<const QWidget*>(pChild);
            if (pOther == nullptr || pOther == &rWidget || !pOther->isVisible() || pOther->isWindow() ||
                IsMadeToCover(*pOther) || IsMadeToCover(rWidget)) {
                continue;
            }
            EXPECT_FALSE(pOther->geometry().intersects(rWidget.geometry()))
                << m_Where << ": " << Name(rWidget) << " lies over " << Name(*pOther);
        }
    }
    static bool IsMadeToCover(const QWidget& rWidget) {
        return Is<CPageOverlay>(rWidget) || Is<CPageCover>(rWidget) ||
               rWidget.parentWidget()->metaObject()->className() == std::string_view("QLineEdit");
    }
    void CheckControl(const QWidget& rWidget) const {
        const bool bKey = Is<QAbstractButton>(rWidget) || Is<QComboBox>(rWidget);
        const bool bOwn = !rWidget.objectName().startsWith("qt_") &&
                          !Is<QLineEdit>(*rWidget.parentWidget()) &&
                          !Is<QAbstractSpinBox>(*rWidget.parentWidget());
        if (!bOwn) {
            return;
        }
        if (bKey || Is<QLineEdit>(rWidget) || Is<QAbstractSpinBox>(rWidget) || Is<QProgressBar>(rWidget)) {
            EXPECT_FALSE(rWidget.accessibleName().isEmpty()) << m_Where << ": " << Name(rWidget);
        }
        if (Is<CSoftkeyButton>(rWidget) || Is<CHeadButton>(rWidget) || Is<CPageOverlay>(*rWidget.window())) {
            EXPECT_GE(rWidget.height(), FINGER) << m_Where << ": " << Name(rWidget);
        }
    }

    std::string m_Where;
    CWindowStage& m_rStage;
};

}  // namespace

TEST(WindowLabelsTest, NothingIsCutOffOrCoveredInAnyStateSizeOrLanguage) {
    std::set<std::string> States;
    VisitWindowStates(TestProgram("librtr_trim.so"), [&](const std::string& rState, CWindowStage& rStage) {
        EXPECT_TRUE(States.insert(rState).second) << rState;
        for (const char* const pLanguage : CWindowStage::LANGUAGES) {
            for (const QSize& rSize : CWindowStage::SIZES) {
                rStage.ShowIn(rSize, pLanguage);
                EXPECT_EQ(rStage.GetWindow().size(), rSize) << rState;
                CChecker(rState + " " + std::to_string(rSize.width()) + " " + pLanguage, rStage).Check();
            }
        }
    });
    EXPECT_GE(States.size(), 30U);
}
