#include "console/isoview.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "archive/report/reporttext.h"
#include "console/isofigures.h"
#include "console/symbols.h"
#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int HEIGHT = 45;  ///< 12 mm at 96 dpi
constexpr int UNIT_WIDTH = 52;

QString ToText(const std::string& rText) {
    return QString::fromStdString(rText);
}

QLabel* MakeLabel(QWidget* pParent) {
    auto* const pLabel = new QLabel(pParent);
    pLabel->setWordWrap(true);
    pLabel->setTextFormat(Qt::PlainText);
    return pLabel;
}

}  // namespace

CIsoView::CIsoView(QWidget* pParent) : QWidget(pParent) {
    auto* const pOuter = new QVBoxLayout(this);
    pOuter->setContentsMargins(0, 0, 0, 0);
    // On a small window there is no room for all of it.
    auto* const pScroll = new QScrollArea(this);
    pScroll->setWidgetResizable(true);
    pScroll->setFrameShape(QFrame::NoFrame);
    pScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    pOuter->addWidget(pScroll);
    auto* const pInner = new QWidget;
    pScroll->setWidget(pInner);
    auto* const pColumn = new QVBoxLayout(pInner);
    pColumn->setContentsMargins(4, 4, 4, 4);
    m_pResult = MakeLabel(pInner);
    pColumn->addWidget(m_pResult);
    m_pTrouble = MakeLabel(pInner);
    m_pTrouble->hide();
    pColumn->addWidget(m_pTrouble);
    for (const CIsoField& rField : ISO_FIELDS) {
        for (std::size_t Plane = 0; Plane < (rField.m_bPerPlane ? 2U : 1U); ++Plane) {
            AddEntry(*pColumn, rField, Plane);
        }
    }
    m_pShowTarget = new QPushButton(pInner);
    m_pShowTarget->setFocusPolicy(Qt::NoFocus);
    m_pShowTarget->setCheckable(true);
    connect(m_pShowTarget, &QPushButton::toggled, this, [this](bool bShown) {
        m_pTarget->setVisible(bShown);
        ShowFigures();
    });
    pColumn->addWidget(m_pShowTarget);
    m_pTarget = MakeLabel(pInner);
    m_pTarget->hide();
    pColumn->addWidget(m_pTarget);
    pColumn->addStretch(1);
    SetTexts();
    FitWindow();
}

void CIsoView::AddEntry(QVBoxLayout& rColumn, const CIsoField& rField, std::size_t Plane) {
    QWidget* const pParent = rColumn.parentWidget();
    CEntry Entry{&rField, Plane, MakeLabel(pParent), new QLineEdit(pParent), new QLabel(pParent)};
    rColumn.addWidget(Entry.m_pLabel);
    auto* const pRow = new QHBoxLayout;
    pRow->addWidget(Entry.m_pEdit, 1);
    pRow->addWidget(Entry.m_pUnit);
    rColumn.addLayout(pRow);
    Entry.m_pEdit->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
    connect(Entry.m_pEdit, &QLineEdit::editingFinished, this, [this, Entry] { Take(Entry); });
    m_Entries.push_back(Entry);
}

bool CIsoView::HasScrews(std::size_t Plane) const {
    const auto& rPlane = m_Setup.m_Planes.at(Plane);
    return rPlane && rPlane->m_bScrews;
}

std::string CIsoView::GetLabel(const CEntry& rEntry) const {
    const bool bUnit = rEntry.m_pField->m_pValues == &CIsoData::m_Unit;
    const char* const pKey = bUnit && HasScrews(rEntry.m_Plane) ? "ISO_RADIUS" : rEntry.m_pField->m_pTextKey;
    return ReportText::Say(pKey, {std::to_string(rEntry.m_Plane + 1)});
}

void CIsoView::Take(const CEntry& rEntry) {
    if (!IsSame() || !m_bSetup || !rEntry.m_pEdit->isModified()) {
        return;
    }
    // A comma is what a German keyboard has beside its digits.
    QString Given = rEntry.m_pEdit->text().trimmed();
    Given.replace(',', '.');
    bool bNumber = Given.isEmpty();
    const double Value = bNumber ? 0.0 : QLocale::c().toDouble(Given, &bNumber);
    if (!bNumber || !rEntry.m_pField->Allows(Value)) {
        // It stays to be put right; what was stored stays too.
        m_pTrouble->setText(ToText(
            ReportText::Say("ISO_REFUSED", {GetLabel(rEntry), ReportText::General(rEntry.m_pField->m_Min),
                                            ReportText::General(rEntry.m_pField->m_Max)})));
        m_pTrouble->show();
        return;
    }
    rEntry.m_pEdit->setModified(false);
    rEntry.m_pField->Set(m_Setup.m_Iso, rEntry.m_Plane, Value);
    const std::string Trouble = OnChanged ? OnChanged(m_Setup.m_Iso) : std::string();
    m_pTrouble->setText(ToText(Trouble));
    m_pTrouble->setVisible(!Trouble.empty());
    ShowFigures();
}

bool CIsoView::IsSame() {
    if (!GetKey || GetKey() == m_Key) {
        return true;
    }
    // What was begun for another one is not for this.
    for (const CEntry& rEntry : m_Entries) {
        rEntry.m_pEdit->setModified(false);
    }
    m_pTrouble->hide();
    Refresh();
    return false;
}

void CIsoView::Refresh() {
    m_Key = GetKey ? GetKey() : std::string();
    const std::optional<CRunSetup> Setup = GetSetup ? GetSetup() : std::nullopt;
    m_bSetup = Setup.has_value();
    m_Setup = Setup.value_or(CRunSetup());
    for (const CEntry& rEntry : m_Entries) {
        const bool bShown = m_bSetup &&
                            (!rEntry.m_pField->m_bPerPlane || m_Setup.m_Planes.at(rEntry.m_Plane)) &&
                            // Two distances share between two planes.
                            (rEntry.m_pField->m_pValues != &CIsoData::m_Distance ||
                             (m_Setup.m_Planes[0] && m_Setup.m_Planes[1]));
        rEntry.m_pLabel->setVisible(bShown);
        rEntry.m_pEdit->setVisible(bShown);
        rEntry.m_pUnit->setVisible(bShown);
        if (!rEntry.m_pEdit->isModified()) {
            const double Value = rEntry.m_pField->Get(m_Setup.m_Iso, rEntry.m_Plane);
            rEntry.m_pEdit->setText(Value == 0.0 ? QString() : ToText(ReportText::General(Value)));
        }
    }
    SetTexts();
}

void CIsoView::ShowFigures() {
    const CIsoFigures Figures(m_Setup);
    m_pResult->setText(ToText(m_bSetup ? Figures.GetResult() : GetText("ISO_NO_SETUP")));
    m_pTarget->setText(m_pShowTarget->isChecked() && m_bSetup ? ToText(Figures.GetTargetOfGrade())
                                                              : QString());
    m_pShowTarget->setVisible(m_bSetup);
}

void CIsoView::SetTexts() {
    for (const CEntry& rEntry : m_Entries) {
        const QString Label = ToText(GetLabel(rEntry));
        const bool bRadius = rEntry.m_pField->m_pValues == &CIsoData::m_Unit && HasScrews(rEntry.m_Plane);
        rEntry.m_pLabel->setText(Label);
        rEntry.m_pEdit->setAccessibleName(Label);
        rEntry.m_pEdit->setPlaceholderText(ToText(GetText("ISO_NOT_KNOWN")));
        rEntry.m_pUnit->setText(QString::fromStdString(GetText(bRadius ? "mm" : rEntry.m_pField->m_pUnit)));
    }
    m_pShowTarget->setText(ToText(GetText("ISO_SHOW_TARGET")));
    m_pShowTarget->setAccessibleName(m_pShowTarget->text());
    m_pShowTarget->setIcon(GetSymbol("crosshair", palette()));
    ShowFigures();
}

void CIsoView::FitWindow() {
    for (const CEntry& rEntry : m_Entries) {
        rEntry.m_pEdit->setMinimumHeight(ScaleLength(*this, HEIGHT));
        rEntry.m_pUnit->setMinimumWidth(ScaleLength(*this, UNIT_WIDTH));
    }
    m_pShowTarget->setMinimumHeight(ScaleLength(*this, HEIGHT));
}

void CIsoView::showEvent(QShowEvent* pEvent) {
    Refresh();
    FitWindow();
    m_Timer.StartPeriodic(PERIOD, [this] { IsSame(); });
    QWidget::showEvent(pEvent);
}

void CIsoView::hideEvent(QHideEvent* pEvent) {
    m_Timer.Stop();
    QWidget::hideEvent(pEvent);
}

void CIsoView::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange || pEvent->type() == QEvent::PaletteChange) {
        SetTexts();
    } else if (pEvent->type() == QEvent::FontChange) {
        FitWindow();
    }
    QWidget::changeEvent(pEvent);
}
