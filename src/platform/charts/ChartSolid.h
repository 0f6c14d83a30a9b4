// The 3-D styles: a room of walls and floor, and in it bars, ribbons and slabs as extruded faces.
// All are seen from the right and above, along one fixed slant, so values still read off the front
// plane.
#pragma once

class QPainter;

namespace pollarix {

struct ChartPlan;

void PaintRoom(const ChartPlan& plan, QPainter& painter);
void PaintSolids(const ChartPlan& plan, QPainter& painter);

} // namespace pollarix
