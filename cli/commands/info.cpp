#include <QVariantMap>
#include <algorithm>
#include <chrono>
#include <iomanip>
#include <sstream>

#include "commands/commands.h"
#include "lidar_link.h"
#include "pages/page_reader.h"

namespace {

/// What is told of a lidar, in order: the key of JSON, the name for people, the text.
struct Fact {
  std::string key;
  std::string name;
  std::string text;  ///< empty while unknown
};

constexpr std::pair<const char*, const char*> kFactVariables[] = {
    {"pn", "PN"},           {"sn", "SN"}, {"hardware", "HWVER"}, {"firmware", "SWVER_YMD"},
    {"up_time", "Up-time"},
};

std::vector<Fact> ReadFromVariables(LidarLink& link, UserReport& report) {
  const ConfigParser& table = *link.model()->table;
  std::vector<const VarInfo*> vars;
  for (const auto& [key, name] : kFactVariables) {
    if (const VarInfo* var = table.FindByName(name)) {
      vars.push_back(var);
    }
  }
  LidarSession& session = link.session();
  const Unread unread = PageReader(link.sender(), *link.model()->table, session.state(),
                                   session.read_failures(), report)
                            .Read(vars, "tevronctl");
  if (!vars.empty() && unread.failed.size() == vars.size()) {
    throw Failure(ExitCode::kBrokenOff,
                  "the lidar does not say who it is: " + unread.failed.begin()->second);
  }
  std::vector<Fact> facts;
  for (const auto& [key, name] : kFactVariables) {
    const VarInfo* var = table.FindByName(name);
    const ConfigParser::Value value = var == nullptr ? ConfigParser::Value() : table.ValueOf(*var);
    facts.push_back({key, name, value.has_bytes ? value.text : ""});
  }
  return facts;
}

std::vector<Fact> TakeFromFacts(const DeviceFacts& facts, SerialFamily family) {
  std::vector<Fact> list;
  bool is_any_read = false;
  for (const QVariant& entry : InfoList(facts, family) + VersionList(facts, family)) {
    const QVariantMap fact = entry.toMap();
    const std::string key = fact["key"].toString().toStdString();
    const bool is_read = fact["state"].toString() != QLatin1String("unread");
    is_any_read = is_any_read || is_read;
    list.push_back({key == "serial_number" ? "sn"
                    : key == "part_number" ? "pn"
                                           : key,
                    fact["name"].toString().toStdString(),
                    is_read ? fact["value"].toString().toStdString() : ""});
  }
  if (!is_any_read) {
    throw Failure(ExitCode::kBrokenOff,
                  "the lidar does not say who it is: " + facts.readings.front().failure);
  }
  return list;
}

std::string WordsOf(const kavel::lidar::TlsCertificate& certificate) {
  return certificate.subject + ", valid until " + certificate.valid_until + ", SHA-256 " +
         FingerprintText(certificate.sha256);
}

QJsonObject ObjectOf(const TrustedCertificate& trusted) {
  QJsonObject object = CertificateObject(trusted.certificate);
  object["trusted_by"] = TextOf(trusted.trusted_by);
  return object;
}

}  // namespace

ExitCode RunInfo(Context& context) {
  LidarLink link(context);
  link.Connect();
  const bool is_network = link.model()->connect_type == kNetworkLink;
  std::vector<Fact> facts = is_network
                                ? ReadFromVariables(link, context.report)
                                : TakeFromFacts(link.session().facts(), link.model()->family);
  const auto begin = std::chrono::steady_clock::now();
  link.session().CheckLink();
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
  facts.insert(facts.begin(), {"model", "Model", link.model()->name});
  facts.push_back({"address", "Address", link.Address()});
  facts.push_back({"link", "Link", TextOf(link.model()->connect_type)});
  const auto certificate = link.session().LinkNow().certificate;
  if (certificate) {
    facts.push_back({"certificate", "Certificate", WordsOf(certificate->certificate)});
  }
  QJsonObject object{{"hardware", QJsonValue()}, {"answer_ms", taken.count()}};
  for (const Fact& fact : facts) {
    std::ostringstream line;
    line << std::left << std::setw(24) << fact.name << (fact.text.empty() ? "-" : fact.text);
    if (fact.key == "link") {
      line << ", answers in " << std::fixed << std::setprecision(1) << taken.count() << " ms";
    }
    context.output.Line(line.str());
    object[QString::fromStdString(fact.key)] = TextOrNull(fact.text);
  }
  object["certificate"] = certificate ? ObjectOf(*certificate) : QJsonValue();
  context.output.Object(object);
  return ExitCode::kDone;
}
