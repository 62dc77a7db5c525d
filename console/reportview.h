#pragma once
#include <QTextBrowser>

#include "archive/report/reportdocument.h"

/// A report for people, in a window: as it is printed, in one column that fits the width.
class CReportView : public QTextBrowser {
public:
    explicit CReportView(QWidget* pParent = nullptr);

    void ShowReport(CReportDocument Document);

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    void Lay();

    CReportDocument m_Document;
    int m_LaidWidth = 0;
};
