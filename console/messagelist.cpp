#include "console/messagelist.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>
#include <array>

#include "console/symbols.h"
#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/localtime.h"

namespace {

constexpr int HEIGHT = 45;  ///< 12 mm at 96 dpi
constexpr int NUMBER = Qt::UserRole;

using Level = CMessageLog::Level;

struct CChoice {
    Level m_Least;
    const char* m_pTextKey;
};
constexpr std::array CHOICES = {CChoice{Level::eMessage, "MESSAGES_ALL"},
                                CChoice{Level::eWarning, "MESSAGES_WARNINGS"},
                                CChoice{Level::eError, "MESSAGES_ERRORS"}};

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

const char* GetWord(Level How) {
    static constexpr std::array WORDS = {"MESSAGE_SAID", "MESSAGE_INFORMATION", "MESSAGE_WARNING",
                                         "MESSAGE_ERROR"};
    return WORDS.at(static_cast<std::size_t>(How));
}

const char* GetLevelSymbol(Level How) {
    static constexpr std::array NAMES = {"message-square", "info", "triangle-alert", "circle-x"};
    return NAMES.at(static_cast<std::size_t>(How));
}

/// Paths have no blanks to break them at.
QString MakeBreakable(QString Text) {
    static const QString BREAK(QChar(0x200B));
    for (const char Mark : {'/', '-', '_', '.'}) {
        Text.replace(QChar(Mark), Mark + BREAK);
    }
    return Text;
}

}  // namespace

CMessageList::CMessageList(CMessageLog& rLog, QWidget* pParent) : QWidget(pParent), m_rLog(rLog) {
    auto* const pColumn = new QVBoxLayout(this);
    pColumn->setContentsMargins(0, 0, 0, 0);
    m_pWords = new QLineEdit(this);
    m_pWords->setClearButtonEnabled(true);
    pColumn->addWidget(m_pWords);
    m_pLevel = new QComboBox(this);
    for (std::size_t i = 0; i < CHOICES.size(); ++i) {
        m_pLevel->addItem({});
    }
    pColumn->addWidget(m_pLevel);
    m_pList = new QListWidget(this);
    m_pList->setWordWrap(true);
    m_pList->setFocusPolicy(Qt::NoFocus);
    m_pList->setSelectionMode(QAbstractItemView::NoSelection);
    m_pList->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_pList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    pColumn->addWidget(m_pList, 1);
    m_pTraces = new QPushButton(this);
    m_pTraces->setFocusPolicy(Qt::NoFocus);
    m_pTraces->setCheckable(true);
    m_pTraces->hide();
    pColumn->addWidget(m_pTraces);
    m_pService = new QPushButton(this);
    m_pService->setFocusPolicy(Qt::NoFocus);
    pColumn->addWidget(m_pService);
    connect(m_pLevel, &QComboBox::currentIndexChanged, this, [this] { Rebuild(); });
    connect(m_pWords, &QLineEdit::textChanged, this, [this] { Rebuild(); });
    connect(m_pService, &QPushButton::clicked, this, [this] {
        if (OnService) {
            OnService();
        }
    });
    SetTexts();
    FitWindow();
}

void CMessageList::OfferTraces(std::function<void(bool)> OnTrace) {
    connect(m_pTraces, &QPushButton::toggled, this, std::move(OnTrace));
    m_pTraces->show();
}

void CMessageList::FitWindow() {
    for (QWidget* const pKey : std::initializer_list<QWidget*>{m_pWords, m_pLevel, m_pTraces, m_pService}) {
        pKey->setMinimumHeight(ScaleLength(*this, HEIGHT));
    }
}

void CMessageList::SetTexts() {
    for (std::size_t i = 0; i < CHOICES.size(); ++i) {
        m_pLevel->setItemText(static_cast<int>(i), Text(CHOICES.at(i).m_pTextKey));
    }
    m_pLevel->setAccessibleName(Text("MESSAGES_LEVEL"));
    m_pWords->setPlaceholderText(Text("MESSAGES_WORDS"));
    m_pWords->setAccessibleName(Text("MESSAGES_WORDS"));
    m_pList->setAccessibleName(Text("MESSAGES"));
    m_pTraces->setText(Text("MESSAGES_TRACES"));
    m_pTraces->setToolTip(Text("MESSAGES_TRACES_TIP"));
    m_pTraces->setAccessibleName(m_pTraces->text());
    m_pTraces->setIcon(GetSymbol("activity", palette()));
    m_pService->setText(Text("SK_SERVICE"));
    m_pService->setAccessibleName(m_pService->text());
    m_pService->setIcon(GetSymbol("package", palette()));
    Rebuild();
}

void CMessageList::Rebuild() {
    m_pList->clear();
    m_nShown = 0;
    Refresh();
    m_pList->scrollToBottom();
}

void CMessageList::Refresh() {
    m_rLog.Collect();
    const std::deque<CMessageLog::CLine>& rLines = m_rLog.GetLines();
    if (rLines.empty() || rLines.back().m_Number == m_nShown) {
        return;
    }
    // Who has scrolled back to read isn't torn away.
    const QScrollBar& rBar = *m_pList->verticalScrollBar();
    const bool bAtEnd = rBar.value() >= rBar.maximum();
    for (const CMessageLog::CLine& rLine : rLines) {
        if (rLine.m_Number > m_nShown) {
            Append(rLine);
        }
    }
    m_nShown = rLines.back().m_Number;
    while (m_pList->count() > 0 && m_pList->item(0)->data(NUMBER).toULongLong() < rLines.front().m_Number) {
        delete m_pList->takeItem(0);
    }
    if (bAtEnd) {
        m_pList->scrollToBottom();
    }
}

void CMessageList::Append(const CMessageLog::CLine& rLine) {
    const CChoice& rChoice = CHOICES.at(static_cast<std::size_t>(m_pLevel->currentIndex()));
    if (!CMessageLog::Matches(rLine, rChoice.m_Least, m_pWords->text().toStdString())) {
        return;
    }
    auto* const pItem = new QListWidgetItem(
        GetSymbol(GetLevelSymbol(rLine.m_Level), palette()),
        QString("%1  %2\n%3")
            .arg(QString::fromStdString(FormatLocalTime(rLine.m_Moment, "%H:%M:%S")),
                 Text(GetWord(rLine.m_Level)), MakeBreakable(QString::fromStdString(rLine.m_Text))));
    pItem->setData(NUMBER, static_cast<qulonglong>(rLine.m_Number));
    m_pList->addItem(pItem);
}

void CMessageList::showEvent(QShowEvent* pEvent) {
    QWidget::showEvent(pEvent);
    Refresh();
    m_pList->scrollToBottom();
    m_Timer.StartPeriodic(PERIOD, [this] { Refresh(); });
}

void CMessageList::hideEvent(QHideEvent* pEvent) {
    m_Timer.Stop();
    QWidget::hideEvent(pEvent);
}

void CMessageList::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange) {
        SetTexts();
    }
    if (pEvent->type() == QEvent::FontChange) {
        FitWindow();
    }
    QWidget::changeEvent(pEvent);
}
