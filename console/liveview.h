#pragma once
#include <QWidget>
#include <vector>

#include "console/livedata.h"
#include "platform/system/timer.h"

/// The readings of a run as they come: for each plane a polar plot and a bar with the target, side by side or
/// one below the other, whichever lets them be larger. Drawn when something has changed, and at most 60 times
/// a second however fast that goes.
class CLiveView : public QWidget {
public:
    explicit CLiveView(QWidget* pParent = nullptr);

    void Show(const std::vector<CLivePlane>& rPlanes);
    /// How often it was drawn.
    std::uint64_t GetPictures() const { return m_nPictures; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    static constexpr std::uint32_t PICTURE_PERIOD = 17;  ///< ms: 58 a second

    /// Place of a plane with its plot and bar.
    QRect GetPlace(std::size_t Index) const;
    /// What has changed since the last picture, if anything has; then a pause.
    void Draw();
    void Describe();

    std::vector<CLivePlane> m_Planes;
    CTimer m_Pause;         ///< runs for a while behind each picture
    bool m_bStale = false;  ///< something has changed since
    std::uint64_t m_nPictures = 0;
};
