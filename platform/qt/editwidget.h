#pragma once
#include <QLineEdit>

#include "platform/qt/controlwidget.h"
#include "platform/window/edit.h"

/// The toolkit's line edit for a CEdit.
class CEditWidget : public CControlWidget<QLineEdit, CEdit> {
public:
    CEditWidget(CEdit& rEdit, QWidget* pParent);

protected:
    void FollowState(const CEdit& rEdit) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void focusInEvent(QFocusEvent* pEvent) override;
    void focusOutEvent(QFocusEvent* pEvent) override;
    /// To what scrolls beneath: the toolkit doesn't hand it on by itself.
    void wheelEvent(QWheelEvent* pEvent) override;

private:
    void OnTextChanged();
    void OnSelectionChanged();
    /// The text as the operator means it.
    QString GetEntered() const;
    void Report(CEdit& rEdit, const QString& rText);
};
