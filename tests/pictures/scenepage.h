#pragma once
#include <memory>

#include "platform/window/dc.h"
#include "tests/pictures/scene.h"

/// Draws a scene with the page's own painters and its own layout.
class CScenePage {
public:
    explicit CScenePage(const CScene& rScene);
    ~CScenePage();
    CScenePage(const CScenePage&) = delete;
    CScenePage& operator=(const CScenePage&) = delete;

    /// Mask: CPreBalancing::PaintMask.
    void Paint(CDC& rDC, unsigned Mask);
    /// The areas of the page: the rectangle of each plane's drawing, and its square.
    CRect GetPlaneRect(std::size_t Plane) const;
    /// Live values for the next Paint.
    void SetMeasurement(std::size_t Plane, double Magnitude, double Angle, double LastMagnitude);

private:
    class CPage;
    std::unique_ptr<CPage> m_pPage;
};

/// The page of a scene in its size and language.
CBitmap RenderScene(const CScene& rScene);
