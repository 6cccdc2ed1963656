#pragma once
// The mapping between the user's coordinates and the 2-D picture: the plot setup typed
// by the user, the scale put on the Canvas, and every way of moving the window (zoom,
// quadrants, pan, wider/narrower, click-to-centre). Single precision throughout, as the
// picture's coordinates are.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

class Canvas;

// The "Plot setup" frame as numbers.
struct PlotSetup {
  float windowlx = 0, windowgx = 0;  // x range shown
  float windowly = 0, windowgy = 0;  // y range shown
  float xorigin = 0;                 // x at which the y-axis is drawn
  float yorigin = 0;                 // y at which the x-axis is drawn
  float divx = 0, divy = 0;          // division sizes
  int32_t plotStep = 1;              // screen units between curve samples
};

struct PlotSetupTexts {
  std::string windowlx, windowgx, windowly, windowgy;
  std::string xorigin, yorigin, divx, divy, plotStep;
};

// Each value is the leading number of its text; RuntimeError 6 when one does not fit.
PlotSetup readPlotSetup(const PlotSetupTexts& texts);

// What the set-up computes for one plot.
struct Viewport {
  PlotSetup setup;
  float plotstep = 0;        // x distance between curve samples
  float pixelx = 0;          // one screen unit in user x
  float pixely = 0;          // one screen unit in user y
  float divh = 0, divv = 0;  // tick lengths (the full extent when they are grid lines)
};

// Puts the user scale on the picture. width and height are the picture's size in
// screen units (twips), read before the scale is set. Overflow or division by zero
// (a zero size, say) is RuntimeError 6 or 11 and the plot is abandoned.
Viewport setUpViewport(const PlotSetup& setup, float width, float height, bool grid,
                       Canvas& picture);

// The four window limits, in the order of their fields.
struct WindowLimits {
  float lx = 0, gx = 0, ly = 0, gy = 0;
};

// The zoom routine of the "Graph" frame, codes 0..13 (0 zoom out, 1..4 quadrants, 5 zoom
// in, 6..9 pan right/up/left/down, 10..13 wider/narrower x, wider/narrower y). It works
// from the field texts; an unknown code leaves the limits as they are.
WindowLimits zoomLimits(int code, const WindowLimits& from);
// The four new field texts (lx, gx, ly, gy) for the code applied to the field texts.
std::array<std::string, 4> zoomTexts(int code, std::string_view lx, std::string_view gx,
                                     std::string_view ly, std::string_view gy);

// Click-to-centre: the four field texts for the last plotted window moved so that its
// centre is at (x, y).
std::array<std::string, 4> centreTexts(const PlotSetup& plotted, float x, float y);

// The division for an axis `extent` wide: `division` itself when the extent holds 4 to
// 12 of it, else the smallest of 1, 2 or 5 times a power of ten that the extent holds
// at most 10 times (and so more than 4 times).
float fittingDivision(float division, float extent);

// The mouse's ways of moving the window. Each gives the new setup with both divisions
// fitted to it, or nothing when no step fits: a window narrower than single precision
// can draw, or wider than 1E+30 (the wheel stops there instead of failing).

// `notches` wheel steps, positive zooming in, about the point of the window that lies a
// share of the picture's width from its left edge and of its height from its top: each
// step halves (in) or doubles (out) every limit's distance from the point, as the zoom
// buttons do about the centre, so the point stays where it is on the picture. Of many
// steps, those that fit are taken.
std::optional<PlotSetup> wheelZoom(const PlotSetup& from, float shareX, float shareY, int notches);

// The window dragged by a share of the picture's width (to the right) and of its height
// (down): the picture follows the pointer.
std::optional<PlotSetup> dragPan(const PlotSetup& from, float shareX, float shareY);

// The field texts a mouse move writes: the limits (lx, gx, ly, gy), then the x and y
// divisions.
std::array<std::string, 6> mouseMoveTexts(const PlotSetup& moved);

// The picture's tooltip at the mouse position.
std::string positionTooltip(float x, float y);

}  // namespace orvane
