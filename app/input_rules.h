#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

#include "variables/input_problem.h"

/// What becomes of a text for the variable that the map describes, a leaf of the manager's myMap.
InputProblem ProblemOfLeaf(const QVariantMap& leaf, const QString& text);

/// What the program will say to a text while it is still being typed, from the rules that decide
/// later: each member gives the problem in a few words, and nothing for a text that will be taken.
class InputRules : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// A dotted IPv4 address.
  Q_INVOKABLE static QString AddressProblem(const QString& text);
  /// A port of the lidar.
  Q_INVOKABLE static QString PortProblem(const QString& text);
  /// The local port of the command client.
  Q_INVOKABLE static QString HostPortProblem(const QString& text);
  /// A value of the variable that the map describes, a leaf of the manager's myMap.
  Q_INVOKABLE static QString ValueProblem(const QVariantMap& leaf, const QString& text);
  /// The same with what becomes of it, as a map: "text", and whether it is "rounded" (another value
  /// is stored) or "impossible" (it cannot be saved); of other problems saving asks first.
  Q_INVOKABLE static QVariantMap Judge(const QVariantMap& leaf, const QString& text);
  /// A whole number from `lowest` to `highest`.
  Q_INVOKABLE static QString NumberProblem(const QString& text, int lowest, int highest);
};
