#pragma once

class CPreBalancing;
class CWnd;

/// Repaints the page of a window: the panel, and over it the running procedure, if there is one. Mask is
/// CPreBalancing::PaintMask; but for ePaintAll what is on the screen stays where the procedure draws nothing,
/// and without a procedure nothing happens. Nor does it while the window is hidden.
void RepaintPage(CWnd& rWnd, CPreBalancing* pProcedure, unsigned Mask);
