#pragma once

#include <string>
#include <vector>

/// The path from the root of the file system, as a user can find it whatever folder is current.
std::string AbsolutePath(const std::string& path);

/// The folder of tables in the install root that the running program lies in, whatever the current
/// directory is: "Config" beside its "bin", or beside the program itself.
std::string ProgramConfigFolder();

/// A folder of tables and keys as "./Config" is, and the site's own in its sub-folder "site": the
/// same layout, read after what ships, so that an update replaces nothing of it. Where both say
/// something of one model, the site counts.
class ConfigFolder {
 public:
  explicit ConfigFolder(std::string path) : path_(std::move(path)) {}

  /// The folder that a model's table lies in, as "./Config/varID/Orca.csv" and
  /// "./Config/site/varID/Orca.csv" lie in "./Config".
  static ConfigFolder Of(const std::string& table_path);

  const std::string& path() const { return path_; }
  std::string site_path() const { return path_ + "/site"; }
  bool has_site() const;

  /// The models that can be chosen: those with a table in "varID" of either, sorted, each once.
  std::vector<std::string> Models() const;

  /// Path of the model's table: the site's where it has one, else the one that ships, whether that
  /// exists or not.
  std::string TableOf(const std::string& model) const;

  /// One line for the user: the table that describes the model, and the site's folder where there
  /// is one, with their whole paths.
  std::string Describe(const std::string& model) const;

  /// The files of this name ("auth_config.csv") that exist, in the order in which they are read.
  /// One that cannot be read is among them: what it says would count.
  std::vector<std::string> FilesCalled(const std::string& name) const;

 private:
  std::string path_;
};
