#pragma once

#include <QColor>
#include <QFont>
#include <QVector>

/// How a plot looks. Colours and font are the screen's, see Theme.
struct PlotLook {
  QColor background;
  QColor grid;
  QColor text;
  QColor box;  ///< behind the values at the cursor
  QFont font;
  QVector<QColor> lines;  ///< by row, from the start again where there are more rows

  QColor LineOf(int row) const { return lines.isEmpty() ? text : lines[row % lines.size()]; }
};

/// The lengths of dashes and gaps in turn, in pixels, of the line of the value `row`; empty for a
/// solid line. Neighbours differ, and so do values that have the same colour.
QVector<qreal> DashesOf(int row);
