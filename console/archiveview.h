#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "archive/report/reportdocument.h"
#include "archive/runarchive.h"
#include "archive/runstore.h"
#include "console/pagecover.h"
#include "platform/system/lifetime.h"

class CReportView;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QTreeWidget;

/// The runs of the archive over the page: a list with filters, a run as its report, two side by side, the
/// trend of a rotor or a machine, and the name of the rotor in the machine. Nothing here waits for the
/// archive: what it is asked for comes when it comes.
class CArchiveView : public CPageCover {
public:
    explicit CArchiveView(QWidget& rPage);

    /// Shows the runs of an archive, which must outlive this or be taken away; null: there is none.
    void SetArchive(CRunArchive* pArchive) { m_pArchive = pArchive; }
    /// The machine whose runs are meant, and its rotor's name.
    void ShowMachine(const std::string& rMachine, const std::string& rRotor);
    /// What its key beside the page does.
    void Toggle();

    std::function<void(const std::string&)> OnRotorName;
    /// Writes the report of a run to a file, and says so.
    std::function<void(std::int64_t Id)> OnReport;

protected:
    void FitWindow() override;
    void changeEvent(QEvent* pEvent) override;

private:
    enum Place { eList, eReports };
    static constexpr std::size_t LONGEST_LIST = 500;

    QPushButton* MakeKey(const char* pSymbol, void (CArchiveView::*pDeed)());
    void SetTexts();
    void AskForList();
    void ShowList(const std::vector<CRunSummary>& rRuns);
    void ShowNames(const std::vector<std::string>& rRotors);
    /// The numbers of the chosen lines, from top to bottom.
    std::vector<std::int64_t> GetChosen() const;
    void OfferWhatFits();
    void ShowChosen();
    void ShowTrend();
    void WriteChosen();
    void GoBack();
    /// One report or two, side by side.
    void ShowReports(std::vector<CReportDocument> Documents);
    void Tell(const QString& rText);
    /// Does work on the archive's store, and what it gives here, unless this view is gone or asks for
    /// something else meanwhile.
    void Ask(std::function<std::function<void()>(CRunStore&)> Work);

    CRunArchive* m_pArchive = nullptr;
    std::string m_Machine;
    std::vector<CRunSummary> m_Runs;  ///< on show
    QLineEdit* m_pRotorName = nullptr;
    QLabel* m_pRotorLabel = nullptr;
    QComboBox* m_pRotors = nullptr;
    QComboBox* m_pResults = nullptr;
    QStackedWidget* m_pPlaces = nullptr;
    QTreeWidget* m_pList = nullptr;
    QLabel* m_pTold = nullptr;
    CReportView* m_pLeft = nullptr;
    CReportView* m_pRight = nullptr;
    QPushButton* m_pShow = nullptr;
    QPushButton* m_pTrend = nullptr;
    QPushButton* m_pWrite = nullptr;
    QPushButton* m_pBack = nullptr;
    std::uint64_t m_nAsked = 0;
    CLifetime m_Lifetime;
};
