#pragma once
#include <QRect>
#include <QWidget>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "console/keyguard.h"
#include "console/softkeys.h"

class CSoftkeyButton;

/// The row of softkeys below the page, pressed by mouse, finger or the function keys of a keyboard. What is
/// pressed is always let go again, whatever happens meanwhile.
class CSoftkeyBar : public QWidget {
public:
    explicit CSoftkeyBar(QWidget* pParent = nullptr);

    /// rStep: where the run stands. A key that confirms means something else in each step.
    void Show(const std::vector<CSoftkey>& rKeys, const std::string& rStep);

    /// As by a finger. False if the key took no notice: it is empty, disabled, held already, or has just come
    /// to mean something else.
    bool Press(std::size_t Place);
    void Release(std::size_t Place);
    void ReleaseAll();
    /// Where the key of an action stands that can be pressed.
    std::optional<std::size_t> FindPlace(Actions::Action Action) const;

    std::function<void(const CSoftkey&)> OnPressed;
    std::function<void(const CSoftkey&)> OnReleased;

    /// A text and the room that it has and takes, in this widget.
    struct CLabelPlace {
        QString m_Text;
        QRect m_Place;
        QSize m_Size;
        int m_LetterPixels = 0;
    };
    std::vector<CLabelPlace> MeasureLabels() const;

protected:
    bool event(QEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    struct CPlace {
        CSoftkeyButton* m_pButton = nullptr;
        CKeyGuard m_Guard;
        CSoftkey m_Key;
        std::optional<CSoftkey> m_Down;  ///< what was pressed, to be let go
    };
    void FitWindow();

    std::array<CPlace, CSoftkeys::PLACES> m_Places;
};
