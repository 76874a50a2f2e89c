#include "input_rules.h"

#include <cstdint>
#include <string>

#include "Platform/ipv4_text.h"
#include "variables/host_port.h"
#include "variables/var_info.h"

InputProblem ProblemOfLeaf(const QVariantMap& leaf, const QString& text) {
  if (leaf["permission"].toInt() == 0) {
    return {};
  }
  InputRule rule;
  rule.type = &ValueTypeOf(leaf["var_type"].toString().toStdString());
  rule.set_coefficient = leaf.value("set_coefficient", 1.0F).toFloat();
  rule.range_min = leaf["range_min"].toInt();
  rule.range_max = leaf["range_max"].toInt();
  rule.is_switch = leaf["type"].toInt() == RowKind::kSwitch;
  return FindInputProblem(rule, text.toStdString());
}

QString InputRules::AddressProblem(const QString& text) {
  uint8_t octets[4];
  return kavel::lidar::ParseDottedIpv4(text.toStdString(), octets)
             ? QString()
             : tr("An address like 192.168.1.201");
}

QString InputRules::PortProblem(const QString& text) {
  uint16_t port = 0;
  return ParsePort(text.toStdString(), &port) ? QString() : tr("A number from 1 to 65535");
}

QString InputRules::HostPortProblem(const QString& text) {
  uint16_t port = 0;
  std::string problem;
  ParseHostPort(text.toStdString(), &port, &problem);
  return QString::fromStdString(problem);
}

QString InputRules::ValueProblem(const QVariantMap& leaf, const QString& text) {
  return QString::fromStdString(ProblemOfLeaf(leaf, text).text);
}

QVariantMap InputRules::Judge(const QVariantMap& leaf, const QString& text) {
  const InputProblem problem = ProblemOfLeaf(leaf, text);
  return {{"text", QString::fromStdString(problem.text)},
          {"rounded", problem.kind == InputProblem::Kind::kRounded},
          {"impossible", problem.kind == InputProblem::Kind::kImpossible}};
}

QString InputRules::NumberProblem(const QString& text, int lowest, int highest) {
  bool is_number = false;
  const int number = text.toInt(&is_number, 10);
  return is_number && number >= lowest && number <= highest
             ? QString()
             : tr("%1 to %2").arg(lowest).arg(highest);
}
