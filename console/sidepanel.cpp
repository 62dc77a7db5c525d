#include "console/sidepanel.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "console/symbols.h"
#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int KEY_HEIGHT = 58;  ///< for a finger in a glove: 15 mm at 96 dpi
constexpr int LOWEST_WITH_TWO_LINES = 52;
constexpr int SYMBOL = 26;
constexpr int SMALL_SYMBOL = 18;
constexpr int SPACING = 4;
constexpr int NARROWEST_VIEW = 290;
constexpr int WIDEST_VIEW = 900;
constexpr int PERCENT = 36;  ///< of the window, for the view

}  // namespace

CSidePanel::CSidePanel(QWidget* pParent)
    : QWidget(pParent), m_pStrip(new QWidget(this)), m_pViews(new QWidget(this)) {
    auto* const pColumns = new QHBoxLayout(this);
    pColumns->setContentsMargins(0, 0, 0, 0);
    pColumns->setSpacing(4);
    auto* const pViews = new QVBoxLayout(m_pViews);
    pViews->setContentsMargins(0, 0, 0, 0);
    pColumns->addWidget(m_pViews);
    auto* const pKeys = new QVBoxLayout(m_pStrip);
    pKeys->setContentsMargins(0, 0, 0, 0);
    pKeys->setSpacing(SPACING);
    pKeys->addStretch(1);
    pColumns->addWidget(m_pStrip);
    m_pViews->hide();
}

QToolButton* CSidePanel::MakeKey() const {
    auto* const pKey = new QToolButton(m_pStrip);
    pKey->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    pKey->setFocusPolicy(Qt::NoFocus);  // an edit that is open in the page stays open
    pKey->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return pKey;
}

void CSidePanel::AddView(QWidget* pView, const char* pTextKey, const char* pSymbol) {
    m_pViews->layout()->addWidget(pView);
    pView->hide();
    QToolButton* const pKey = MakeKey();
    pKey->setCheckable(true);
    connect(pKey, &QToolButton::clicked, this,
            [this, pView] { Unfold(pView->isVisibleTo(this) ? nullptr : pView); });
    const auto nViews = std::count_if(m_Entries.begin(), m_Entries.end(),
                                      [](const CEntry& rEntry) { return rEntry.m_pView != nullptr; });
    static_cast<QVBoxLayout*>(m_pStrip->layout())->insertWidget(static_cast<int>(nViews), pKey);
    m_Entries.push_back(
        {pView, pKey, [pTextKey] { return QString::fromStdString(GetText(pTextKey)); }, pSymbol});
    ShowTexts();
}

void CSidePanel::AddKey(std::function<QString()> GetText, const char* pSymbol,
                        std::function<void()> OnPressed) {
    QToolButton* const pKey = MakeKey();
    connect(pKey, &QToolButton::clicked, this, std::move(OnPressed));
    m_pStrip->layout()->addWidget(pKey);
    m_Entries.push_back({nullptr, pKey, std::move(GetText), pSymbol});
    ShowTexts();
}

void CSidePanel::Unfold(QWidget* pView) {
    for (const CEntry& rEntry : m_Entries) {
        if (rEntry.m_pView != nullptr) {
            rEntry.m_pKey->setChecked(rEntry.m_pView == pView);
            rEntry.m_pView->setVisible(rEntry.m_pView == pView);
        }
    }
    m_pViews->setVisible(pView != nullptr);
}

QWidget* CSidePanel::GetUnfolded() const {
    const auto Found = std::find_if(m_Entries.begin(), m_Entries.end(),
                                    [](const CEntry& rEntry) { return rEntry.m_pKey->isChecked(); });
    return Found == m_Entries.end() ? nullptr : Found->m_pView;
}

void CSidePanel::FitWindow() {
    ScaleFont(*this);
    FitKeys();
    m_pViews->setFixedWidth(std::clamp(window()->width() * PERCENT / 100, NARROWEST_VIEW, WIDEST_VIEW));
}

void CSidePanel::FitKeys() {
    const int nKeys = static_cast<int>(m_Entries.size());
    const int Room = (height() - SPACING * nKeys) / std::max(nKeys, 1);
    const int Height = std::min(ScaleLength(*this, KEY_HEIGHT), Room);
    const bool bLow = Height < ScaleLength(*this, LOWEST_WITH_TWO_LINES);
    const int Symbol = ScaleLength(*this, bLow ? SMALL_SYMBOL : SYMBOL);
    for (const CEntry& rEntry : m_Entries) {
        rEntry.m_pKey->setToolButtonStyle(bLow ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonTextUnderIcon);
        rEntry.m_pKey->setIconSize({Symbol, Symbol});
        rEntry.m_pKey->setFixedHeight(std::max(Height, 1));
    }
}

void CSidePanel::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    FitKeys();
}

QSize CSidePanel::minimumSizeHint() const {
    QSize Size = QWidget::minimumSizeHint();
    if (!m_pViews->isHidden()) {
        Size.rwidth() -= m_pViews->minimumWidth() - NARROWEST_VIEW;
    }
    Size.setHeight(std::max(m_pViews->isHidden() ? 0 : m_pViews->minimumSizeHint().height(), 1));
    return Size;
}

void CSidePanel::ShowTexts() {
    for (const CEntry& rEntry : m_Entries) {
        const QString Text = rEntry.m_GetText();
        rEntry.m_pKey->setText(Text);
        rEntry.m_pKey->setAccessibleName(Text);
        rEntry.m_pKey->setIcon(GetSymbol(rEntry.m_pSymbol, palette()));
    }
}

void CSidePanel::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange || pEvent->type() == QEvent::PaletteChange) {
        ShowTexts();
    }
    QWidget::changeEvent(pEvent);
}
