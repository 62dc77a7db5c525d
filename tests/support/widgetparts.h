#pragma once
#include <QWidget>
#include <stdexcept>

/// The first widget of a class within another, by its C++ type: findChild() goes by Q_OBJECT, which our
/// widgets don't have, and takes any widget for theirs.
template <typename T>
T& FindPart(const QWidget& rWhole) {
    for (QWidget* const pWidget : rWhole.findChildren<QWidget*>()) {
        if (auto* const pPart = dynamic_cast<T*>(pWidget)) {
            return *pPart;
        }
    }
    throw std::logic_error("the widget has no such part");
}
