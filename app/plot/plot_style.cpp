#include "plot/plot_style.h"

namespace {

// As many colours as there are in a look: the next turn through them starts with another pattern.
constexpr int kTurn = 12;

}  // namespace

QVector<qreal> DashesOf(int row) {
  static const QVector<QVector<qreal>> patterns = {{},           {9, 5},  {3, 3},
                                                   {9, 3, 3, 3}, {16, 5}, {6, 3, 2, 3, 2, 3}};
  return patterns[(row + row / kTurn) % patterns.size()];
}
