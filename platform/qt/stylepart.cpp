#include "platform/qt/stylepart.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>

#include "platform/qt/qttypes.h"
#include "platform/window/syscolor.h"

namespace {

void DrawArrowButton(QPainter& rPainter, QStyleOptionButton& rOption, QStyle::PrimitiveElement Arrow) {
    const QStyle& rStyle = *QApplication::style();
    rStyle.drawPrimitive(QStyle::PE_PanelButtonCommand, &rOption, &rPainter);
    // The arrow fills its rectangle; in a flat button it would touch the edges.
    const int nSide = std::min(rOption.rect.width(), rOption.rect.height()) - 2;
    QRect Square(0, 0, nSide, nSide);
    Square.moveCenter(rOption.rect.center());
    rOption.rect = Square;
    rStyle.drawPrimitive(Arrow, &rOption, &rPainter);
}

QPalette MakeSystemPalette() {
    QPalette Palette(ToQt(GetSysColor(SysColor::eFace)));
    Palette.setColor(QPalette::Base, ToQt(GetSysColor(SysColor::eWindow)));
    for (const auto Role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        Palette.setColor(Role, ToQt(GetSysColor(SysColor::eWindowText)));
        Palette.setColor(QPalette::Disabled, Role, ToQt(GetSysColor(SysColor::eGrayText)));
    }
    Palette.setColor(QPalette::Disabled, QPalette::Base, ToQt(GetSysColor(SysColor::eFace)));
    Palette.setColor(QPalette::Highlight, ToQt(GetSysColor(SysColor::eSelection)));
    Palette.setColor(QPalette::HighlightedText, ToQt(GetSysColor(SysColor::eSelectionText)));
    return Palette;
}

}  // namespace

// A style keeps the pictures of what it has drawn by the palette that it was given: with a new one each time
// it would draw everything anew, and fill its cache with pictures that nobody asks for again.
QPalette GetSystemPalette() {
    static QPalette s_Palette;
    if (const QPalette Palette = MakeSystemPalette(); Palette != s_Palette) {
        s_Palette = Palette;
    }
    return s_Palette;
}

void DrawStylePart(QPainter& rPainter, const QRect& rRect, CDC::Part Kind, CDC::CPartState State) {
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
        return;
    }
    QStyleOptionButton Option;
    Option.rect = rRect;
    Option.palette = GetSystemPalette();
    Option.state.setFlag(QStyle::State_Enabled, State.m_bEnabled);
    Option.state.setFlag(QStyle::State_Active);
    Option.state.setFlag(State.m_bPressed ? QStyle::State_Sunken : QStyle::State_Raised);
    Option.palette.setCurrentColorGroup(State.m_bEnabled ? QPalette::Active : QPalette::Disabled);
    rPainter.save();
    switch (Kind) {
        case CDC::eSpinUp:
            DrawArrowButton(rPainter, Option, QStyle::PE_IndicatorArrowUp);
            break;
        case CDC::eSpinDown:
            DrawArrowButton(rPainter, Option, QStyle::PE_IndicatorArrowDown);
            break;
        case CDC::eCheckBox:
            Option.state.setFlag(State.m_bOn ? QStyle::State_On : QStyle::State_Off);
            QApplication::style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &Option, &rPainter);
            break;
        case CDC::eExpandBox:
            QApplication::style()->drawPrimitive(
                State.m_bOn ? QStyle::PE_IndicatorArrowDown : QStyle::PE_IndicatorArrowRight, &Option,
                &rPainter);
            break;
    }
    rPainter.restore();
}
