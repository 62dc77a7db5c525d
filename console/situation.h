#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "contract/holering.h"
#include "contract/ncnotification.h"
#include "contract/prebalprogress.h"

/// Everything that somebody at the panel can see of a run.
struct CSituation {
    bool m_bRunning = false;  ///< a procedure is on the page
    std::int32_t m_Menu = -1;
    CPreBalProgress m_Progress;
    CNcNotification m_Notification;
    std::uint32_t m_Warning = 0;  ///< as the NC gets it

    /// The columns of a notification belong to the planes of the procedure, in their order: the only plane of
    /// a procedure stands in the first ones, whichever of the machine's it is. Plane counts from 0.
    std::size_t GetColumn(std::size_t Plane) const {
        std::size_t Column = 0;
        for (std::size_t Before = 0; Before < Plane; ++Before) {
            Column += m_Progress.m_Readings.at(Before).m_bShown ? 1 : 0;
        }
        return Column;
    }
    /// Angles asked for in a plane of the machine; none if the procedure leaves it alone.
    std::vector<int> GetAngles(std::size_t Plane) const {
        return m_Progress.m_Readings.at(Plane).m_bShown ? m_Notification.GetAngles(GetColumn(Plane))
                                                        : std::vector<int>();
    }
    /// Whether a plane of the machine is balanced with screws.
    bool HasScrews(std::size_t Plane) const { return m_Progress.m_Screws.at(Plane).has_value(); }
    /// The screws asked for in a plane of the machine, as they are to be fitted to the rotor. Holes come from
    /// the notification; so do weights, exact ones where the page tells them.
    std::vector<CRotorScrew> GetScrews(std::size_t Plane, const CHoleRing& rRing) const {
        std::vector<CRotorScrew> Screws;
        const std::size_t Column = GetColumn(Plane);
        for (std::size_t i = 0; i < CNcNotification::CORRECTIONS; ++i) {
            const std::int32_t Angle = m_Notification.GetAngle(Column, i);
            if (Angle < 0 || rRing.m_nHoles == 0) {
                continue;
            }
            const std::uint32_t Hole = rRing.GetModuleHole(Angle);
            double Grams = m_Notification.GetWeight(Column, i) / 100.0;
            if (HasScrews(Plane)) {
                for (const CPreBalProgress::CShownScrew& rShown : *m_Progress.m_Screws.at(Plane)) {
                    Grams = rShown.m_Hole == Hole ? rShown.m_Grams : Grams;
                }
            }
            Screws.push_back({rRing.GetRotorHole(Hole), Grams});
        }
        return Screws;
    }
};
