#include "input_rules.h"

#include <cstdint>
#include <string>

#include "Platform/ipv4_text.h"
#include "variables/host_port.h"
#include "variables/input_problem.h"

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
  if (leaf["permission"].toInt() == 0) {
    return {};
  }
  const ValueType& type = ValueTypeOf(leaf["var_type"].toString().toStdString());
  return QString::fromStdString(
      InputProblem(type, leaf["range_min"].toInt(), leaf["range_max"].toInt(), text.toStdString()));
}

QString InputRules::NumberProblem(const QString& text, int lowest, int highest) {
  bool is_number = false;
  const int number = text.toInt(&is_number, 10);
  return is_number && number >= lowest && number <= highest
             ? QString()
             : tr("%1 to %2").arg(lowest).arg(highest);
}
