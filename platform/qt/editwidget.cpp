#include "platform/qt/editwidget.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QWheelEvent>
#include <algorithm>

#include "platform/qt/inputevents.h"

namespace {

// The window layer counts characters, the toolkit 16-bit units.
int ToCharacters(const QString& rText, int nUnits) {
    return static_cast<int>(rText.left(nUnits).toUcs4().size());
}

int ToUnits(const QString& rText, int nCharacters) {
    const QList<uint> Characters =
        rText.toUcs4().first(std::min<qsizetype>(nCharacters, rText.toUcs4().size()));
    return static_cast<int>(
        QString::fromUcs4(reinterpret_cast<const char32_t*>(Characters.constData()), Characters.size())
            .size());
}

}  // namespace

CEditWidget::CEditWidget(CEdit& rEdit, QWidget* pParent) : CControlWidget(rEdit, pParent) {
    setFocusPolicy(Qt::ClickFocus);  // the Tab key goes by the order of the windows
    connect(this, &QLineEdit::textChanged, this, [this] { OnTextChanged(); });
    connect(this, &QLineEdit::selectionChanged, this, [this] { OnSelectionChanged(); });
    connect(this, &QLineEdit::cursorPositionChanged, this, [this] { OnSelectionChanged(); });
}

void CEditWidget::FollowState(const CEdit& rEdit) {
    const QString Text = QString::fromStdString(rEdit.GetWindowText());
    setReadOnly(rEdit.IsReadOnly());
    setFrame((rEdit.GetStyle() & WS_BORDER) != 0);
    constexpr int NO_LIMIT = 32767;
    const int nLimit = rEdit.GetLimitText() == 0 ? NO_LIMIT : rEdit.GetLimitText();
    // The program's text may be longer. Not without need: it makes the toolkit forget what can be undone.
    if (const int nMost = std::max(nLimit, static_cast<int>(Text.size())); nMost != maxLength()) {
        setMaxLength(nMost);
    }
    if (text() != Text) {
        setText(Text);
    }
    const int nAnchor = ToUnits(Text, rEdit.GetAnchor());
    const int nCaret = ToUnits(Text, rEdit.GetCaret());
    const int nStart = std::min(nAnchor, nCaret);
    const int nLength = std::max(nAnchor, nCaret) - nStart;
    if (cursorPosition() != nCaret || selectedText().size() != nLength ||
        (nLength > 0 && selectionStart() != nStart)) {
        setSelection(nAnchor, nCaret - nAnchor);
    }
}

QString CEditWidget::GetEntered() const {
    return static_cast<const CEdit*>(GetWnd())->IsUpperCase() ? text().toUpper() : text();
}

void CEditWidget::Report(CEdit& rEdit, const QString& rText) {
    const int nCaret = cursorPosition();
    const int nAnchor = !hasSelectedText()           ? nCaret
                        : nCaret == selectionStart() ? selectionEnd()
                                                     : selectionStart();
    rEdit.ChangeByOperator(rText.toStdString(), ToCharacters(text(), nAnchor), ToCharacters(text(), nCaret));
}

void CEditWidget::OnTextChanged() {
    Tell([this](CEdit& rEdit) { Report(rEdit, GetEntered()); });
}

void CEditWidget::OnSelectionChanged() {
    // While the text is being changed, its own signal tells of both.
    Tell([this](CEdit& rEdit) {
        if (text().toStdString() == rEdit.GetWindowText()) {
            Report(rEdit, text());
        }
    });
}

void CEditWidget::keyPressEvent(QKeyEvent* pEvent) {
    const CEdit* const pEdit = GetControl();
    const QString Upper = pEvent->text().toUpper();
    if (pEdit == nullptr || !pEdit->IsUpperCase() || Upper == pEvent->text()) {
        QLineEdit::keyPressEvent(pEvent);
        return;
    }
    // Before it gets in: a text that is put right afterwards has lost its undo.
    QKeyEvent Event(pEvent->type(), pEvent->key(), pEvent->modifiers(), Upper, pEvent->isAutoRepeat(),
                    static_cast<ushort>(pEvent->count()));
    QLineEdit::keyPressEvent(&Event);
    pEvent->setAccepted(Event.isAccepted());
}

void CEditWidget::focusInEvent(QFocusEvent* pEvent) {
    QLineEdit::focusInEvent(pEvent);
    if (!isReadOnly() && pEvent->reason() != Qt::PopupFocusReason) {
        // An on-screen keyboard comes by itself for a tap only, not when the program sets the focus.
        QGuiApplication::inputMethod()->show();
    }
}

void CEditWidget::focusOutEvent(QFocusEvent* pEvent) {
    Quietly([this, pEvent] { QLineEdit::focusOutEvent(pEvent); });
    Follow();  // the toolkit has dropped the selection
}

void CEditWidget::wheelEvent(QWheelEvent* pEvent) {
    if (GetWnd() != nullptr) {
        SendWheel(*GetWnd(), *pEvent);
    }
}
