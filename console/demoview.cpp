#include "console/demoview.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "console/symbols.h"
#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int KEY_HEIGHT = 36;  // nobody wears gloves to look on, and the page needs the room
constexpr double TEXT_PART = 1.15;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

CDemoView::CDemoView(IFOperatorPanel& rPanel, IFMachine& rMachine, std::uint32_t WorkingSpeed,
                     QWidget* pParent)
    : QWidget(pParent), m_Demo(rPanel, rMachine, WorkingSpeed) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    auto* pRow = new QHBoxLayout(this);
    pRow->setContentsMargins(8, 4, 4, 4);
    auto* pWords = new QVBoxLayout();
    m_pText = new QLabel(this);
    m_pText->setWordWrap(true);
    m_pText->setForegroundRole(QPalette::ToolTipText);
    pWords->addWidget(m_pText, 1);
    m_pTime = new QProgressBar(this);
    m_pTime->setTextVisible(false);
    m_pTime->setFixedHeight(5);
    pWords->addWidget(m_pTime);
    pRow->addLayout(pWords, 1);
    auto* pKeys = new QVBoxLayout();
    pKeys->setSpacing(3);
    auto* pSteps = new QHBoxLayout();
    m_pPause = MakeKey("pause");
    m_pNext = MakeKey("skip-forward");
    m_pBreakOff = MakeKey(nullptr);
    pSteps->addWidget(m_pPause);
    pSteps->addWidget(m_pNext);
    pKeys->addLayout(pSteps);
    pKeys->addWidget(m_pBreakOff);
    pRow->addLayout(pKeys);
    connect(m_pPause, &QPushButton::clicked, this, [this] { m_Demo.SetPaused(!m_Demo.IsPaused()); });
    connect(m_pNext, &QPushButton::clicked, this, [this] { m_Demo.GoOn(); });
    connect(m_pBreakOff, &QPushButton::clicked, this, [this] { m_Demo.BreakOff(); });
    m_Demo.OnChanged = [this] { Refresh(); };
    SetTexts();
    FitWindow();
}

QPushButton* CDemoView::MakeKey(const char* pSymbol) {
    auto* pKey = new QPushButton(this);
    pKey->setFocusPolicy(Qt::NoFocus);  // the page keeps it
    if (pSymbol != nullptr) {
        pKey->setIcon(GetSymbol(pSymbol, palette()));
    }
    return pKey;
}

void CDemoView::SetTexts() {
    m_pNext->setText(Text("DEMO_NEXT"));
    m_pBreakOff->setText(Text("DEMO_BREAK_OFF"));
    setAccessibleName(Text("DEMO_NAME"));
    m_pTime->setAccessibleName(Text("DEMO_TIME"));
    Refresh();
}

void CDemoView::Refresh() {
    const QString Words = QString::fromStdString(m_Demo.GetText());
    if (m_pText->text() != Words) {
        m_pText->setText(Words);
        m_Whole = std::max(1U, m_Demo.GetTimeToRead());
    }
    m_pTime->setRange(0, static_cast<int>(m_Whole));
    m_pTime->setValue(static_cast<int>(m_Demo.GetTimeToRead()));
    m_pPause->setText(Text(m_Demo.IsPaused() ? "DEMO_RESUME" : "DEMO_PAUSE"));
    m_pPause->setIcon(GetSymbol(m_Demo.IsPaused() ? "play" : "pause", palette()));
    m_pPause->setEnabled(m_Demo.IsPlaying());
    m_pNext->setEnabled(m_Demo.IsPlaying());
    m_pBreakOff->setEnabled(m_Demo.IsPlaying());
    for (QPushButton* pKey : {m_pPause, m_pNext, m_pBreakOff}) {
        pKey->setAccessibleName(pKey->text());
    }
}

void CDemoView::FitWindow() {
    QFont Font;
    Font.setPixelSize(qRound(QFontInfo(font()).pixelSize() * TEXT_PART));
    m_pText->setFont(Font);
    for (QPushButton* const pKey : {m_pPause, m_pNext, m_pBreakOff}) {
        pKey->setMinimumHeight(ScaleLength(*this, KEY_HEIGHT));
    }
}

void CDemoView::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange) {
        SetTexts();
    }
    if (pEvent->type() == QEvent::FontChange) {
        FitWindow();
    }
    QWidget::changeEvent(pEvent);
}
