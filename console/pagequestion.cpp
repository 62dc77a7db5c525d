#include "console/pagequestion.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <utility>

#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int WIDEST = 620;
constexpr double TITLE_PART = 1.25;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

CPageQuestion::CPageQuestion(QWidget& rPage) : CPageOverlay(rPage) {
    auto* const pColumn = new QVBoxLayout(&GetCard());
    pColumn->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
    pColumn->setSpacing(MARGIN / 2);
    m_pTitle = new QLabel(&GetCard());
    m_pTitle->setWordWrap(true);
    pColumn->addWidget(m_pTitle);
    m_pText = new QLabel;
    m_pText->setWordWrap(true);
    m_pText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_pText->setTextFormat(Qt::PlainText);
    auto* const pScroll = new QScrollArea(&GetCard());  // a page may be too low for a long text
    pScroll->setFrameShape(QFrame::NoFrame);
    pScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    pScroll->setWidgetResizable(true);
    pScroll->setFocusPolicy(Qt::NoFocus);
    pScroll->setWidget(m_pText);
    pColumn->addWidget(pScroll, 1);
    m_pRow = new QHBoxLayout;
    m_pRow->setSpacing(MARGIN);
    pColumn->addLayout(m_pRow);
}

void CPageQuestion::Ask(CQuestion Question) {
    m_Question = std::move(Question);
    for (QPushButton* const pButton : std::exchange(m_Buttons, {})) {
        m_pRow->removeWidget(pButton);
        pButton->hide();
        pButton->deleteLater();  // it may be the one that was just pressed
    }
    for (std::size_t i = 0; i < m_Question.m_Answers.size(); ++i) {
        auto* const pButton = new QPushButton(&GetCard());
        pButton->setAutoDefault(true);  // Enter presses the one with the focus
        connect(pButton, &QPushButton::clicked, this, [this, i] { Answer(i); });
        m_pRow->addWidget(pButton, 1);
        m_Buttons.push_back(pButton);
    }
    Open(*m_Buttons.front());
}

void CPageQuestion::Answer(std::size_t Index) {
    if (!IsOpen() || Index >= m_Question.m_Answers.size()) {
        return;
    }
    const std::function<void()> Do = m_Question.m_Answers[Index].m_Do;
    Close();
    if (Do) {
        Do();
    }
}

std::vector<const char*> CPageQuestion::GetChoices() const {
    std::vector<const char*> Choices;
    if (IsOpen() && m_Question.m_Answers.size() > 1) {
        for (const CAnswer& rAnswer : m_Question.m_Answers) {
            Choices.push_back(rAnswer.m_pTextKey);
        }
    }
    return Choices;
}

void CPageQuestion::SetTexts() {
    m_pTitle->setText(Text(m_Question.m_pTitleKey));
    m_pText->setText(QString::fromStdString(m_Question.m_Text()));
    setAccessibleName(m_pTitle->text());
    setAccessibleDescription(m_pText->text());
    for (std::size_t i = 0; i < m_Buttons.size(); ++i) {
        m_Buttons[i]->setText(Text(m_Question.m_Answers[i].m_pTextKey));
        m_Buttons[i]->setAccessibleName(m_Buttons[i]->text());
    }
}

int CPageQuestion::GetHeightFor(int Width) const {
    constexpr int FRAME = 4;
    const int Inner = Width - 2 * MARGIN - FRAME;
    return m_pTitle->heightForWidth(Inner) + m_pText->heightForWidth(Inner) +
           ScaleLength(*this, BUTTON_HEIGHT) + 4 * MARGIN;
}

int CPageQuestion::GetWidest() const {
    return WIDEST;
}

void CPageQuestion::FitWindow() {
    QFont Font;
    Font.setBold(true);
    Font.setPixelSize(qRound(QFontInfo(font()).pixelSize() * TITLE_PART));
    m_pTitle->setFont(Font);
    for (QPushButton* const pButton : m_Buttons) {
        pButton->setMinimumHeight(ScaleLength(*this, BUTTON_HEIGHT));
    }
}

void CPageQuestion::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        Answer(0);
        return;
    }
    CPageOverlay::keyPressEvent(pEvent);
}
