#include "console/codepage.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "console/symbols.h"
#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int WIDEST = 600;
constexpr int KEY = 48;  ///< 12 mm at 96 dpi, and a little
constexpr int DIGIT_ROWS = 4;
constexpr int LONGEST_CODE = 64;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

CCodePage::CCodePage(QWidget& rPage) : CPageOverlay(rPage) {
    auto* const pRow = new QHBoxLayout(&GetCard());
    pRow->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
    pRow->setSpacing(MARGIN);
    auto* const pColumn = new QVBoxLayout;
    pRow->addLayout(pColumn, 1);
    m_pText = new QLabel(&GetCard());
    m_pText->setWordWrap(true);
    pColumn->addWidget(m_pText, 1);
    m_pCode = new QLineEdit(&GetCard());
    m_pCode->setEchoMode(QLineEdit::Password);
    m_pCode->setMaxLength(LONGEST_CODE);
    m_pCode->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhNoPredictiveText | Qt::ImhSensitiveData);
    connect(m_pCode, &QLineEdit::returnPressed, this, [this] { Enter(); });
    pColumn->addWidget(m_pCode);
    m_pTrouble = new QLabel(&GetCard());
    m_pTrouble->setWordWrap(true);
    pColumn->addWidget(m_pTrouble);
    auto* const pButtons = new QHBoxLayout;
    pColumn->addLayout(pButtons);
    const auto MakeButton = [this](QBoxLayout& rRow, auto OnClick) {
        auto* const pButton = new QPushButton(&GetCard());
        pButton->setAutoDefault(true);
        connect(pButton, &QPushButton::clicked, this, OnClick);
        rRow.addWidget(pButton);
        return pButton;
    };
    m_pCancel = MakeButton(*pButtons, [this] { Close(); });
    m_pEnter = MakeButton(*pButtons, [this] { Enter(); });
    m_pDigits = new QWidget(&GetCard());
    pRow->addWidget(m_pDigits);
    MakeDigits();
    CCodePage::SetTexts();
}

void CCodePage::MakeDigits() {
    auto* const pGrid = new QGridLayout(m_pDigits);
    pGrid->setContentsMargins(0, 0, 0, 0);
    const auto MakeKey = [&](const QString& rText, int Row, int Column, int Columns) {
        auto* const pKey = new QPushButton(rText, m_pDigits);
        pKey->setFocusPolicy(Qt::NoFocus);
        pGrid->addWidget(pKey, Row, Column, 1, Columns);
        return pKey;
    };
    for (int Digit = 0; Digit < 10; ++Digit) {
        const int Place = Digit == 0 ? 9 : Digit - 1;
        QPushButton* const pKey = MakeKey(QString::number(Digit), Place / 3, Place % 3, 1);
        connect(pKey, &QPushButton::clicked, this,
                [this, Digit] { m_pCode->insert(QString::number(Digit)); });
    }
    m_pErase = MakeKey({}, 3, 1, 2);
    m_pErase->setIcon(GetSymbol("delete", palette()));
    connect(m_pErase, &QPushButton::clicked, this, [this] { m_pCode->backspace(); });
}

void CCodePage::Ask(const char* pTextKey, std::function<void(const std::string&)> OnCode) {
    m_pTextKey = pTextKey;
    m_OnCode = std::move(OnCode);
    m_pCode->clear();
    m_pTrouble->clear();
    Open(*m_pCode);
}

void CCodePage::Tell(const std::string& rText) {
    m_pCode->clear();
    m_pTrouble->setText(QString::fromStdString(rText));
    Follow();
}

void CCodePage::Enter() {
    const std::string Code = m_pCode->text().toStdString();
    m_pCode->clear();
    const std::function<void(const std::string&)> OnCode = m_OnCode;  // which may ask once more
    OnCode(Code);
}

void CCodePage::SetTexts() {
    m_pText->setText(Text(m_pTextKey));
    setAccessibleName(m_pText->text());
    m_pCode->setAccessibleName(m_pText->text());
    m_pCancel->setText(Text("CODE_CANCEL"));
    m_pEnter->setText(Text("CODE_OK"));
    m_pErase->setText(Text("CODE_ERASE"));
    for (QPushButton* const pButton : findChildren<QPushButton*>()) {
        pButton->setAccessibleName(pButton->text());
    }
}

int CCodePage::GetHeightFor(int Width) const {
    const int Inner = Width - 3 * MARGIN - m_pDigits->sizeHint().width();
    const int Key = ScaleLength(*this, KEY);
    const int Column =
        m_pText->heightForWidth(Inner) + m_pTrouble->heightForWidth(Inner) + 2 * Key + 3 * MARGIN;
    return qMax(Column, DIGIT_ROWS * (Key + MARGIN / 2)) + 2 * MARGIN;
}

int CCodePage::GetWidest() const {
    return WIDEST;
}

void CCodePage::FitWindow() {
    const int Key = ScaleLength(*this, KEY);
    m_pCode->setMinimumHeight(Key);
    for (QPushButton* const pButton : findChildren<QPushButton*>()) {
        pButton->setMinimumHeight(Key);
    }
}

void CCodePage::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        Close();
        return;
    }
    CPageOverlay::keyPressEvent(pEvent);
}
