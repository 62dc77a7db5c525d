#pragma once
#include <QWidget>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "archive/isofields.h"
#include "archive/runrecord.h"
#include "platform/system/timer.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

/// The values of a rotor by which its readings mean g·mm and a balance quality grade: fields to enter them,
/// and at once what they come to. Nothing of the module's settings is changed here: the target that a grade
/// means is told, and set on the settings page.
class CIsoView : public QWidget {
public:
    explicit CIsoView(QWidget* pParent = nullptr);

    /// Tells one configuration on show from another: asked often.
    std::function<std::string()> GetKey;
    /// The configuration on show with its values and its calibration; nothing before there is one.
    std::function<std::optional<CRunSetup>()> GetSetup;
    /// Keeps the values; why it couldn't, or an empty text.
    std::function<std::string(const CIsoData&)> OnChanged;

    /// Shows the configuration anew; a field that is being edited stays as it is.
    void Refresh();

protected:
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    struct CEntry {
        const CIsoField* m_pField;
        std::size_t m_Plane;
        QLabel* m_pLabel;
        QLineEdit* m_pEdit;
        QLabel* m_pUnit;
    };
    void AddEntry(QVBoxLayout& rColumn, const CIsoField& rField, std::size_t Plane);
    void Take(const CEntry& rEntry);
    /// Another configuration is on show than that whose values stand here: they are replaced. False if so.
    bool IsSame();
    void SetTexts();
    void ShowFigures();
    void FitWindow();
    std::string GetLabel(const CEntry& rEntry) const;
    bool HasScrews(std::size_t Plane) const;

    static constexpr std::uint32_t PERIOD = 500;  ///< ms

    CRunSetup m_Setup;
    std::string m_Key;      ///< of what is shown
    bool m_bSetup = false;  ///< there is one
    std::vector<CEntry> m_Entries;
    QLabel* m_pTrouble = nullptr;
    QLabel* m_pResult = nullptr;
    QLabel* m_pTarget = nullptr;
    QPushButton* m_pShowTarget = nullptr;
    CTimer m_Timer;
};
