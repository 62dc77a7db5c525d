#include "console/softkeybar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <algorithm>
#include <utility>

#include "console/softkeybutton.h"
#include "console/windowscale.h"
#include "platform/system/eventloop.h"

namespace {

/// 12 mm at 96 dpi: to be hit with a glove.
constexpr int FEWEST_PIXELS = 45;
/// Lines of letters that a key is high.
constexpr double LINES = 3.6;

/// Whether a second press, before the menu of what the first one has brought about arrives, would be one too
/// many.
bool Confirms(const CSoftkey& rKey) {
    return rKey.IsAction(Actions::eNext) || rKey.IsAction(Actions::eNeutralAdjusted) ||
           rKey.IsAction(Actions::eStart) || rKey.IsAction(Actions::eRebalance);
}

std::string DescribeMeaning(const CSoftkey& rKey, const std::string& rStep) {
    return std::to_string(rKey.m_Kind) + " " + rKey.m_pTextKey + " " + std::to_string(rKey.m_Answer) + " " +
           rKey.m_Value1 + " " + rKey.m_Value2 + " " + (Confirms(rKey) ? rStep : "");
}

}  // namespace

CSoftkeyBar::CSoftkeyBar(QWidget* pParent) : QWidget(pParent) {
    auto* const pRow = new QHBoxLayout(this);
    pRow->setContentsMargins(0, 0, 0, 0);
    pRow->setSpacing(4);
    for (std::size_t i = 0; i < m_Places.size(); ++i) {
        auto* const pButton = new CSoftkeyButton(QString("F%1").arg(i + 1), this);
        m_Places.at(i).m_pButton = pButton;
        connect(pButton, &QPushButton::pressed, this, [this, i] { Press(i); });
        connect(pButton, &QPushButton::released, this, [this, i] { Release(i); });
        pRow->addWidget(pButton, 1);
    }
    if (pParent != nullptr) {
        pParent->window()->installEventFilter(this);
    }
    FitWindow();
}

void CSoftkeyBar::Show(const std::vector<CSoftkey>& rKeys, const std::string& rStep) {
    const std::uint64_t Now = IFEventLoop::Current().Now();
    for (std::size_t i = 0; i < m_Places.size(); ++i) {
        CPlace& rPlace = m_Places.at(i);
        const CSoftkey Key = i < rKeys.size() ? rKeys[i] : CSoftkey{};
        rPlace.m_Guard.SetMeaning(DescribeMeaning(Key, rStep), Now);
        rPlace.m_Key = Key;
        if (rPlace.m_Down && (!Key.MeansTheSame(*rPlace.m_Down) || !Key.m_bEnabled)) {
            Release(i);
        }
        rPlace.m_pButton->Show(QString::fromStdString(Key.GetLabel()), Key.GetSymbolName(), Key.m_bEnabled);
    }
}

bool CSoftkeyBar::Press(std::size_t Place) {
    CPlace& rPlace = m_Places.at(Place);
    if (!rPlace.m_Key.m_bEnabled || rPlace.m_Down || !rPlace.m_Guard.Takes(IFEventLoop::Current().Now())) {
        return false;
    }
    const CSoftkey Key = rPlace.m_Key;  // what it does may show other keys
    rPlace.m_Down = Key;
    rPlace.m_pButton->setDown(true);
    if (OnPressed) {
        OnPressed(Key);
    }
    return true;
}

void CSoftkeyBar::Release(std::size_t Place) {
    CPlace& rPlace = m_Places.at(Place);
    // The menu may have changed while the key was down: what is let go is what was pressed.
    const std::optional<CSoftkey> Key = std::exchange(rPlace.m_Down, std::nullopt);
    rPlace.m_pButton->setDown(false);
    if (Key && OnReleased) {
        OnReleased(*Key);
    }
}

void CSoftkeyBar::ReleaseAll() {
    for (std::size_t i = 0; i < m_Places.size(); ++i) {
        Release(i);
    }
}

std::optional<std::size_t> CSoftkeyBar::FindPlace(Actions::Action Action) const {
    const auto* const pFound = std::ranges::find_if(m_Places, [Action](const CPlace& rPlace) {
        return rPlace.m_Key.IsAction(Action) && rPlace.m_Key.m_bEnabled;
    });
    return pFound == m_Places.end() ? std::nullopt : std::optional(pFound - m_Places.begin());
}

std::vector<CSoftkeyBar::CLabelPlace> CSoftkeyBar::MeasureLabels() const {
    std::vector<CLabelPlace> Labels;
    for (const CPlace& rPlace : m_Places) {
        const CSoftkeyButton& rButton = *rPlace.m_pButton;
        if (!rButton.text().isEmpty()) {
            Labels.push_back({rButton.text(), rButton.GetTextPlace().translated(rButton.pos()),
                              rButton.GetTextSize(), rButton.GetTextFont().pixelSize()});
        }
    }
    return Labels;
}

bool CSoftkeyBar::event(QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::WindowDeactivate:
            ReleaseAll();  // whoever is in front now gets the key's release
            break;
        case QEvent::FontChange:
        case QEvent::ParentChange:
            FitWindow();
            break;
        default:
            break;
    }
    return QWidget::event(pEvent);
}

void CSoftkeyBar::hideEvent(QHideEvent* pEvent) {
    ReleaseAll();
    QWidget::hideEvent(pEvent);
}

bool CSoftkeyBar::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == window() && pEvent->type() == QEvent::Resize) {
        FitWindow();
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

void CSoftkeyBar::FitWindow() {
    const double Scale = GetWindowScale(*this);
    const QFontMetrics Metrics(font());
    const int Height = std::max(FEWEST_PIXELS, qRound(Metrics.height() * LINES));
    for (const CPlace& rPlace : m_Places) {
        if (rPlace.m_pButton != nullptr) {
            rPlace.m_pButton->setFixedHeight(qRound(Height * Scale));
            rPlace.m_pButton->SetLetters(qRound(QFontInfo(font()).pixelSize() * Scale));
        }
    }
}
