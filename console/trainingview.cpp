#include "console/trainingview.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "console/symbols.h"
#include "console/trainingsituations.h"
#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int KEY_HEIGHT = 46;  // 12 mm at 96 dpi

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

CTrainingView::CTrainingView(CTrainingLesson& rLesson, CTrainingTicks& rTicks, std::size_t Current,
                             QWidget* pParent)
    : QWidget(pParent), m_rLesson(rLesson), m_rTicks(rTicks), m_Current(Current) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    auto* pRows = new QVBoxLayout(this);
    pRows->setContentsMargins(8, 4, 4, 4);
    pRows->setSpacing(4);
    auto* pKeys = new QHBoxLayout();
    m_pChoice = new QComboBox(this);
    for (std::size_t i = 0; i < GetTrainingSituations().size(); ++i) {
        m_pChoice->addItem(QString());
    }
    m_pChoice->setCurrentIndex(static_cast<int>(Current));
    m_pChoice->setMaxVisibleItems(m_pChoice->count());
    m_pChoice->setMinimumContentsLength(1);
    m_pChoice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_pBegin = new QPushButton(GetSymbol("play", palette()), QString(), this);
    m_pBegin->setFocusPolicy(Qt::NoFocus);
    connect(m_pBegin, &QPushButton::clicked, this, [this] {
        if (OnChosen) {
            OnChosen(static_cast<std::size_t>(m_pChoice->currentIndex()));
        }
    });
    pKeys->addWidget(m_pChoice, 1);
    pKeys->addWidget(m_pBegin);
    pRows->addLayout(pKeys);
    m_pText = new QLabel(this);
    m_pText->setWordWrap(true);
    m_pText->setForegroundRole(QPalette::ToolTipText);
    pRows->addWidget(m_pText);
    connect(m_pChoice, &QComboBox::currentIndexChanged, this, [this] { Refresh(); });
    FitWindow();
    m_rLesson.OnResult = [this](const CTrainingResult& rResult) { OnResult(rResult); };
    SetTexts();
}

void CTrainingView::OnResult(const CTrainingResult& rResult) {
    if (rResult.m_bMastered) {
        m_bKept = m_rTicks.Add(m_rLesson.GetSituation().m_pId);
    }
    SetTexts();
}

void CTrainingView::SetTexts() {
    const auto Situations = GetTrainingSituations();
    for (std::size_t i = 0; i < Situations.size(); ++i) {
        const bool bDone = m_rTicks.Has(Situations[i].m_pId);
        const QString Title = QString("%1. ").arg(i + 1) + Text(Situations[i].m_pTitleKey);
        m_pChoice->setItemText(static_cast<int>(i), bDone ? Title + " – " + Text("TRAINING_DONE") : Title);
        m_pChoice->setItemIcon(static_cast<int>(i), GetSymbol(bDone ? "circle-check" : "circle", palette()));
    }
    m_pChoice->setAccessibleName(Text("TRAINING_NAME"));
    setAccessibleName(Text("TRAINING_NAME"));
    Refresh();
}

void CTrainingView::Refresh() {
    const auto Chosen = static_cast<std::size_t>(m_pChoice->currentIndex());
    m_pBegin->setText(Text(Chosen == m_Current ? "TRAINING_AGAIN" : "TRAINING_BEGIN"));
    m_pBegin->setAccessibleName(m_pBegin->text());
    const auto& rResult = m_rLesson.GetResult();
    QString Shown = Text(GetTrainingSituations()[Chosen].m_pTaskKey);
    if (Chosen == m_Current && rResult) {
        Shown = QString::fromStdString(rResult->m_Text);
        Shown += m_bKept ? QString() : " " + Text("TRAINING_NOT_KEPT");
    }
    m_pText->setText(Shown);
}

void CTrainingView::FitWindow() {
    for (QWidget* pKey : std::initializer_list<QWidget*>{m_pChoice, m_pBegin}) {
        pKey->setMinimumHeight(ScaleLength(*this, KEY_HEIGHT));
    }
}

void CTrainingView::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange) {
        SetTexts();
    }
    if (pEvent->type() == QEvent::FontChange) {
        FitWindow();
    }
    QWidget::changeEvent(pEvent);
}
