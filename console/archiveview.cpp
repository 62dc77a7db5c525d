#include "console/archiveview.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "archive/archivedrun.h"
#include "archive/report/reportcontent.h"
#include "archive/report/reporttext.h"
#include "archive/report/trendcontent.h"
#include "console/reportview.h"
#include "console/symbols.h"
#include "console/windowscale.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int KEY_HEIGHT = 45;  ///< 12 mm at 96 dpi
constexpr int LINE_HEIGHT = 34;

enum Column : std::uint8_t { eDate, eRotor, eProcedure, eBefore, eAfter, eResult, COLUMNS };

using Result = CRunFilter::Result;

struct CChoice {
    Result m_Result;
    const char* m_pTextKey;
};
constexpr std::array CHOICES = {CChoice{Result::eAny, "ARCHIVE_ANY_RESULT"},
                                CChoice{Result::eWithin, "ARCHIVE_WITHIN"},
                                CChoice{Result::eOver, "ARCHIVE_OVER"},
                                CChoice{Result::eFailed, "ARCHIVE_FAILED"},
                                CChoice{Result::eBrokenOff, "ARCHIVE_BROKEN_OFF"},
                                CChoice{Result::eInterrupted, "ARCHIVE_INTERRUPTED"}};

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

QString Clean(const std::string& rText) {
    return QString::fromStdString(ReportText::CleanName(rText));
}

/// Of two planes the larger reading.
QString GetReading(const std::array<std::optional<double>, 2>& rPlanes) {
    std::optional<double> Largest;
    for (const std::optional<double>& rPlane : rPlanes) {
        Largest = std::max(Largest, rPlane);
    }
    return Largest ? QString::fromStdString(ReportText::Reading(*Largest)) : QString("–");
}

QString GetResult(const CRunSummary& rRun) {
    switch (rRun.m_State) {
        case CRunRecord::State::eRunning:
            return Text("ARCHIVE_INTERRUPTED");
        case CRunRecord::State::eBrokenOff:
            return Text("ARCHIVE_BROKEN_OFF");
        case CRunRecord::State::eFailed:
            return Text("ARCHIVE_FAILED");
        case CRunRecord::State::eFinished:
            break;
    }
    const bool bOver = rRun.m_Result.ends_with("OverTarget");
    return Text(bOver ? "ARCHIVE_OVER" : "ARCHIVE_WITHIN") +
           (rRun.m_bSaved ? QString() : ", " + Text("ARCHIVE_NOT_SAVED"));
}

QString GetTitle(Column Which) {
    const QString Unit = QString::fromUtf8(Units::UNBALANCE);
    switch (Which) {
        case eDate:
            return Text("ARCHIVE_DATE");
        case eRotor:
            return Text("ARCHIVE_ROTOR");
        case eProcedure:
            return Text("ARCHIVE_PROCEDURE");
        case eBefore:
            return QString::fromStdString(ReportText::Say("ARCHIVE_BEFORE", {Units::UNBALANCE}));
        case eAfter:
            return QString::fromStdString(ReportText::Say("ARCHIVE_AFTER", {Units::UNBALANCE}));
        default:
            return Text("ARCHIVE_RESULT");
    }
}

}  // namespace

CArchiveView::CArchiveView(QWidget& rPage) : CPageCover(rPage) {
    m_pRotorLabel = new QLabel(this);
    m_pRotorName = new QLineEdit(this);
    m_pRotorName->setClearButtonEnabled(true);
    GetTitleRow().insertWidget(1, m_pRotorLabel);
    GetTitleRow().insertWidget(2, m_pRotorName, 1);
    connect(m_pRotorName, &QLineEdit::editingFinished, this, [this] {
        if (OnRotorName && m_pRotorName->isModified()) {
            m_pRotorName->setModified(false);
            OnRotorName(m_pRotorName->text().toStdString());
        }
    });

    m_pPlaces = new QStackedWidget(this);
    auto* const pListPlace = new QWidget(m_pPlaces);
    auto* const pListColumn = new QVBoxLayout(pListPlace);
    pListColumn->setContentsMargins(4, 4, 4, 4);
    auto* const pFilters = new QHBoxLayout();
    m_pRotors = new QComboBox(pListPlace);
    m_pResults = new QComboBox(pListPlace);
    pFilters->addWidget(m_pRotors, 1);
    pFilters->addWidget(m_pResults, 1);
    pListColumn->addLayout(pFilters);
    m_pList = new QTreeWidget(pListPlace);
    m_pList->setColumnCount(COLUMNS);
    m_pList->setRootIsDecorated(false);
    m_pList->setUniformRowHeights(true);
    m_pList->setSelectionMode(QAbstractItemView::MultiSelection);  // a finger has no Ctrl key
    m_pList->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    pListColumn->addWidget(m_pList, 1);
    m_pPlaces->addWidget(pListPlace);
    auto* const pReports = new QWidget(m_pPlaces);
    auto* const pReportRow = new QHBoxLayout(pReports);
    pReportRow->setContentsMargins(0, 0, 0, 0);
    m_pLeft = new CReportView(pReports);
    m_pRight = new CReportView(pReports);
    pReportRow->addWidget(m_pLeft, 1);
    pReportRow->addWidget(m_pRight, 1);
    m_pPlaces->addWidget(pReports);
    GetColumn().addWidget(m_pPlaces, 1);
    m_pTold = new QLabel(this);
    m_pTold->setWordWrap(true);
    GetColumn().addWidget(m_pTold);

    auto* const pKeys = new QHBoxLayout();
    pKeys->setContentsMargins(4, 0, 4, 2);
    m_pBack = MakeKey("arrow-left", &CArchiveView::GoBack);
    m_pShow = MakeKey("eye", &CArchiveView::ShowChosen);
    m_pTrend = MakeKey("activity", &CArchiveView::ShowTrend);
    m_pWrite = MakeKey("files", &CArchiveView::WriteChosen);
    for (QPushButton* const pKey : {m_pBack, m_pShow, m_pTrend, m_pWrite}) {
        pKeys->addWidget(pKey, 1);
    }
    GetColumn().addLayout(pKeys);

    connect(m_pRotors, &QComboBox::activated, this, [this] { AskForList(); });
    connect(m_pResults, &QComboBox::activated, this, [this] { AskForList(); });
    connect(m_pList, &QTreeWidget::itemSelectionChanged, this, [this] { OfferWhatFits(); });
    // Two runs are compared line by line.
    for (const auto& [pFrom, pTo] : {std::pair(m_pLeft, m_pRight), std::pair(m_pRight, m_pLeft)}) {
        connect(pFrom->verticalScrollBar(), &QScrollBar::valueChanged, pTo->verticalScrollBar(),
                &QScrollBar::setValue);
    }
    setFocusProxy(m_pList);
    for (const CChoice& rChoice : CHOICES) {
        m_pResults->addItem({}, static_cast<int>(rChoice.m_Result));
    }
    SetTexts();
    GoBack();
}

QPushButton* CArchiveView::MakeKey(const char* pSymbol, void (CArchiveView::*pDeed)()) {
    auto* const pKey = new QPushButton(this);
    pKey->setFocusPolicy(Qt::NoFocus);
    pKey->setIcon(GetSymbol(pSymbol, palette()));
    connect(pKey, &QPushButton::clicked, this, [this, pDeed] { (this->*pDeed)(); });
    return pKey;
}

void CArchiveView::SetTexts() {
    SetTitle(Text("ARCHIVE_TITLE"));
    m_pRotorLabel->setText(Text("ARCHIVE_ROTOR_NAME"));
    m_pRotorName->setAccessibleName(m_pRotorLabel->text());
    QStringList Titles;
    for (int nColumn = 0; nColumn < COLUMNS; ++nColumn) {
        Titles << GetTitle(static_cast<Column>(nColumn));
    }
    m_pList->setHeaderLabels(Titles);
    m_pList->setAccessibleName(Text("ARCHIVE_TITLE"));
    for (std::size_t i = 0; i < CHOICES.size(); ++i) {
        m_pResults->setItemText(static_cast<int>(i), Text(CHOICES.at(i).m_pTextKey));
    }
    m_pResults->setAccessibleName(Text("ARCHIVE_RESULT"));
    m_pRotors->setAccessibleName(Text("ARCHIVE_ROTOR"));
    if (m_pRotors->count() > 0) {
        m_pRotors->setItemText(0, Text("ARCHIVE_ANY_ROTOR"));
    }
    const std::array<std::pair<QPushButton*, const char*>, 4> KEYS = {
        std::pair(m_pBack, "ARCHIVE_BACK"), std::pair(m_pShow, "ARCHIVE_SHOW"),
        std::pair(m_pTrend, "ARCHIVE_TREND"), std::pair(m_pWrite, "ARCHIVE_WRITE")};
    for (const auto& [pKey, pText] : KEYS) {
        pKey->setText(Text(pText));
        pKey->setAccessibleName(pKey->text());
    }
    OfferWhatFits();
}

void CArchiveView::FitWindow() {
    for (QWidget* const pWidget :
         std::initializer_list<QWidget*>{m_pBack, m_pShow, m_pTrend, m_pWrite, m_pRotors, m_pResults}) {
        pWidget->setMinimumHeight(ScaleLength(*this, KEY_HEIGHT));
    }
    m_pRotorName->setMinimumHeight(ScaleLength(*this, BUTTON_SIZE));
    m_pList->setStyleSheet(QString("QTreeView::item { height: %1px; }").arg(ScaleLength(*this, LINE_HEIGHT)));
}

void CArchiveView::changeEvent(QEvent* pEvent) {
    CPageCover::changeEvent(pEvent);
    if (pEvent->type() == QEvent::LanguageChange) {
        SetTexts();
        if (IsOpen()) {
            GoBack();  // a report stays in the language in which it was made
            AskForList();
        }
    }
}

void CArchiveView::ShowMachine(const std::string& rMachine, const std::string& rRotor) {
    m_Machine = rMachine;
    m_pRotorName->setText(QString::fromStdString(rRotor));
    m_pRotorName->setModified(false);
}

void CArchiveView::Toggle() {
    if (IsOpen()) {
        Close();
        return;
    }
    GoBack();
    Open();
    AskForList();
}

void CArchiveView::Ask(std::function<std::function<void()>(CRunStore&)> Work) {
    if (m_pArchive == nullptr) {
        Tell(Text("ARCHIVE_OFF"));
        return;
    }
    ++m_nAsked;
    m_pArchive->Ask(std::move(Work), m_Lifetime.Guard([this](const std::string& rWhy) {
        Tell(Text("ARCHIVE_UNREADABLE").arg(QString::fromStdString(rWhy)));
    }));
}

void CArchiveView::AskForList() {
    CRunFilter Filter;
    Filter.m_nLimit = LONGEST_LIST;
    Filter.m_Result = static_cast<Result>(m_pResults->currentData().toInt());
    if (m_pRotors->currentIndex() > 0) {
        Filter.m_Rotor = m_pRotors->currentData().toString().toStdString();
    }
    const auto Show =
        m_Lifetime.Guard([this, nAsked = m_nAsked + 1](const std::vector<CRunSummary>& rRuns,
                                                       const std::vector<std::string>& rRotors) {
            if (nAsked == m_nAsked) {
                ShowNames(rRotors);
                ShowList(rRuns);
            }
        });
    Ask([Filter, Show](CRunStore& rStore) -> std::function<void()> {
        return [Show, Runs = rStore.List(Filter), Rotors = rStore.GetRotors()]() mutable {
            auto Deliver = Show;
            Deliver(Runs, Rotors);
        };
    });
}

void CArchiveView::ShowNames(const std::vector<std::string>& rRotors) {
    const QString Chosen = m_pRotors->currentIndex() > 0 ? m_pRotors->currentData().toString() : QString();
    m_pRotors->clear();
    m_pRotors->addItem(Text("ARCHIVE_ANY_ROTOR"));
    for (const std::string& rRotor : rRotors) {
        if (!rRotor.empty()) {
            m_pRotors->addItem(Clean(rRotor), QString::fromStdString(rRotor));
        }
    }
    m_pRotors->setCurrentIndex(Chosen.isEmpty() ? 0 : std::max(0, m_pRotors->findData(Chosen)));
}

void CArchiveView::ShowList(const std::vector<CRunSummary>& rRuns) {
    m_Runs = rRuns;
    m_pList->clear();
    QList<QTreeWidgetItem*> Lines;
    for (const CRunSummary& rRun : m_Runs) {
        auto* const pLine = new QTreeWidgetItem();
        pLine->setText(eDate, QString::fromStdString(ReportText::Date(rRun.m_Started, false)));
        pLine->setText(eRotor, Clean(rRun.m_Rotor));
        pLine->setText(eProcedure, Text(rRun.m_bRebalance ? "ARCHIVE_REBALANCING" : "ARCHIVE_PREBALANCING"));
        pLine->setText(eBefore, GetReading(rRun.m_Before));
        pLine->setText(eAfter, GetReading(rRun.m_After));
        pLine->setText(eResult, GetResult(rRun));
        pLine->setData(0, Qt::UserRole, static_cast<qlonglong>(rRun.m_Id));
        Lines.push_back(pLine);
    }
    m_pList->addTopLevelItems(Lines);
    Tell(m_Runs.empty()                  ? Text("ARCHIVE_NONE")
         : m_Runs.size() == LONGEST_LIST ? Text("ARCHIVE_NEWEST").arg(LONGEST_LIST)
                                         : QString());
    OfferWhatFits();
}

std::vector<std::int64_t> CArchiveView::GetChosen() const {
    std::vector<std::int64_t> Ids;
    for (int nLine = 0; nLine < m_pList->topLevelItemCount(); ++nLine) {
        const QTreeWidgetItem& rLine = *m_pList->topLevelItem(nLine);
        if (rLine.isSelected()) {
            Ids.push_back(rLine.data(0, Qt::UserRole).toLongLong());
        }
    }
    return Ids;
}

void CArchiveView::OfferWhatFits() {
    const bool bList = m_pPlaces->currentIndex() == eList;
    const auto nChosen = m_pList->selectedItems().size();
    m_pBack->setVisible(!bList);
    m_pShow->setVisible(bList);
    m_pShow->setText(Text(nChosen == 2 ? "ARCHIVE_COMPARE" : "ARCHIVE_SHOW"));
    m_pShow->setAccessibleName(m_pShow->text());
    m_pShow->setEnabled(nChosen == 1 || nChosen == 2);
    m_pTrend->setVisible(bList);
    m_pTrend->setEnabled(!m_Runs.empty());
    m_pWrite->setVisible(bList);
    m_pWrite->setEnabled(nChosen == 1);
}

void CArchiveView::GoBack() {
    ++m_nAsked;  // what is on its way comes too late
    m_pPlaces->setCurrentIndex(eList);
    OfferWhatFits();
}

void CArchiveView::Tell(const QString& rText) {
    m_pTold->setText(rText);
    m_pTold->setVisible(!rText.isEmpty());
}

void CArchiveView::ShowReports(std::vector<CReportDocument> Documents) {
    m_pRight->setVisible(Documents.size() > 1);
    m_pPlaces->setCurrentIndex(eReports);
    m_pLeft->ShowReport(std::move(Documents.front()));
    if (Documents.size() > 1) {
        m_pRight->ShowReport(std::move(Documents.back()));
    }
    Tell({});
    OfferWhatFits();
}

void CArchiveView::ShowChosen() {
    const auto Show = m_Lifetime.Guard([this, nAsked = m_nAsked + 1](const std::vector<CArchivedRun>& rRuns) {
        if (nAsked != m_nAsked) {
            return;
        }
        std::vector<CReportDocument> Documents;
        Documents.reserve(rRuns.size());
        for (const CArchivedRun& rRun : rRuns) {
            Documents.push_back(MakeReportDocument(rRun.MakeReportInput()));
        }
        if (Documents.empty()) {
            Tell(Text("ARCHIVE_GONE"));
        } else {
            ShowReports(std::move(Documents));
        }
    });
    Ask([Ids = GetChosen(), Show](CRunStore& rStore) -> std::function<void()> {
        std::vector<CArchivedRun> Runs;
        for (const std::int64_t Id : Ids) {
            if (std::optional<CArchivedRun> Run = CArchivedRun::Load(rStore, Id)) {
                Runs.push_back(std::move(*Run));
            }
        }
        return [Show, Runs = std::move(Runs)]() mutable {
            auto Deliver = Show;
            Deliver(Runs);
        };
    });
}

void CArchiveView::ShowTrend() {
    // Of the rotor of the chosen run, or of the one that is filtered by; without a name of the machine.
    const std::vector<std::int64_t> Chosen = GetChosen();
    const auto Found = std::ranges::find_if(
        m_Runs, [&Chosen](const CRunSummary& rRun) { return Chosen.empty() || rRun.m_Id == Chosen.front(); });
    CRunFilter Filter;
    Filter.m_nLimit = CArchivedRun::TREND;
    Filter.m_Rotor =
        m_pRotors->currentIndex() > 0 ? m_pRotors->currentData().toString().toStdString() : Found->m_Rotor;
    Filter.m_Machine = Filter.m_Rotor.empty() ? Found->m_Machine : std::string();
    const std::string Title = Filter.m_Rotor.empty() ? Filter.m_Machine : Filter.m_Rotor;
    const auto Show =
        m_Lifetime.Guard([this, Title, nAsked = m_nAsked + 1](const std::vector<CRunRecord>& rRuns) {
            if (nAsked == m_nAsked) {
                ShowReports({MakeTrendDocument(Title, rRuns)});
            }
        });
    Ask([Filter, Show](CRunStore& rStore) -> std::function<void()> {
        std::vector<CRunRecord> Runs;
        for (const CRunSummary& rRun : rStore.List(Filter)) {
            if (std::optional<CRunRecord> Record = rStore.Load(rRun.m_Id)) {
                Runs.push_back(std::move(*Record));
            }
        }
        std::ranges::reverse(Runs);
        return [Show, Runs = std::move(Runs)]() mutable {
            auto Deliver = Show;
            Deliver(Runs);
        };
    });
}

void CArchiveView::WriteChosen() {
    const std::vector<std::int64_t> Chosen = GetChosen();
    if (OnReport && Chosen.size() == 1) {
        OnReport(Chosen.front());
    }
}
