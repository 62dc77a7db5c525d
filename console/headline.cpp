#include "console/headline.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <algorithm>

#include "console/headbutton.h"
#include "console/symbols.h"
#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

namespace {

/// 12 mm at 96 dpi.
constexpr int HEIGHT = 45;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

/// Told by form as well as by colour, and by the word beside it.
QIcon GetLightSymbol(CLight::Level Level, const QPalette& rPalette) {
    QPalette Colored = rPalette;
    const bool bDark = rPalette.color(QPalette::Window).lightness() < 128;
    const auto Get = [&](const char* pName, const QColor& rBright, const QColor& rDark) {
        Colored.setColor(QPalette::ButtonText, bDark ? rBright : rDark);
        return GetSymbol(pName, Colored);
    };
    switch (Level) {
        case CLight::Level::eGood:
            return Get("circle-check", QColor(0x66, 0xDD, 0x88), QColor(0x0B, 0x75, 0x32));
        case CLight::Level::eWaiting:
            return Get("triangle-alert", QColor(0xFF, 0xC1, 0x4D), QColor(0xA8, 0x5B, 0x00));
        case CLight::Level::eTrouble:
            return Get("circle-x", QColor(0xFF, 0x7A, 0x70), QColor(0xC0, 0x1C, 0x1C));
        case CLight::Level::eOff:
            break;
    }
    return Get("circle-dashed", QColor(0xB0, 0xB0, 0xB0), QColor(0x60, 0x60, 0x60));
}

}  // namespace

const char* CHeadLine::GetNameKey(CHeadState::Place Place) {
    static constexpr std::array NAMES = {"HEAD_LINK", "HEAD_MODULE", "HEAD_NC", "HEAD_DATABASE"};
    return NAMES.at(Place);
}

CHeadLine::CHeadLine(QWidget* pParent) : QFrame(pParent) {
    auto* const pRow = new QHBoxLayout(this);
    pRow->setContentsMargins(0, 0, 0, 0);
    pRow->setSpacing(2);
    m_pMachine = new CHeadButton(this);
    m_pMachine->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    pRow->addWidget(m_pMachine, 2);
    for (int i = 0; i < CHeadState::PLACES; ++i) {
        auto* const pLight = new CHeadButton(this);
        connect(pLight, &QToolButton::clicked, this, [this, i] {
            if (OnLight) {
                OnLight(static_cast<CHeadState::Place>(i));
            }
        });
        m_Lights.at(static_cast<std::size_t>(i)) = pLight;
        pRow->addWidget(pLight);
    }
    m_pMessage = new CHeadButton(this);
    m_pMessage->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    connect(m_pMessage, &QToolButton::clicked, this, [this] {
        if (OnMessage) {
            OnMessage();
        }
    });
    connect(m_pMachine, &QToolButton::clicked, this, [this] {
        if (OnMachine) {
            OnMachine();
        }
    });
    pRow->addWidget(m_pMessage, 3);
    m_pClock = new QLabel(this);
    m_pClock->setContentsMargins(4, 0, 4, 0);
    pRow->addWidget(m_pClock);
    if (pParent != nullptr) {
        pParent->window()->installEventFilter(this);
    }
    FitWindow();
}

void CHeadLine::Show(const CHeadState& rState) {
    const bool bFirst = m_State.m_Lights.front().m_Word.empty();
    const std::array<CLight, CHeadState::PLACES> Former = m_State.m_Lights;
    m_State = rState;
    m_pMachine->Show(QString::fromStdString(rState.m_Machine),
                     QString::fromStdString(rState.m_Configuration));
    for (std::size_t i = 0; i < m_Lights.size(); ++i) {
        const CLight& rLight = rState.m_Lights.at(i);
        if (bFirst || !(rLight == Former.at(i))) {
            m_Lights.at(i)->Show(Text(GetNameKey(static_cast<CHeadState::Place>(i))),
                                 QString::fromStdString(rLight.m_Word),
                                 GetLightSymbol(rLight.m_Level, palette()));
            m_Lights.at(i)->setAccessibleDescription(QString::fromStdString(rLight.m_Text));
        }
    }
    m_pMessage->Show({}, QString::fromStdString(rState.m_Message));
    if (rState.m_Message.empty()) {
        m_pMessage->setAccessibleName(Text("MESSAGES"));
    }
    m_pClock->setText(QString::fromStdString(rState.m_Clock));
}

void CHeadLine::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange || pEvent->type() == QEvent::PaletteChange) {
        m_State.m_Lights = {};  // all is drawn anew at the next look
    }
    if (pEvent->type() == QEvent::FontChange) {
        FitWindow();
    }
    QFrame::changeEvent(pEvent);
}

bool CHeadLine::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == window() && pEvent->type() == QEvent::Resize) {
        FitWindow();
    }
    return QFrame::eventFilter(pWatched, pEvent);
}

void CHeadLine::FitWindow() {
    const double Scale = GetWindowScale(*this);
    const int Letters = qRound(QFontInfo(font()).pixelSize() * Scale);
    const int Height = std::max(qRound(HEIGHT * Scale), 3 * Letters);
    for (CHeadButton* const pButton : findChildren<CHeadButton*>()) {
        pButton->SetLetters(Letters);
        pButton->setFixedHeight(Height);
    }
    if (m_pClock != nullptr) {
        QFont Font = font();
        Font.setPixelSize(Letters);
        m_pClock->setFont(Font);
    }
}
