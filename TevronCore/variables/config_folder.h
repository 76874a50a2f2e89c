#pragma once

#include <string>
#include <vector>

#include "variables/table_fault.h"

/// The path from the root of the file system, as a user can find it whatever folder is current.
std::string AbsolutePath(const std::string& path);

/// The folder of tables in the install root that the running program lies in, whatever the current
/// directory is: "Config" beside its "bin", or beside the program itself.
std::string ProgramConfigFolder();

/// One folder of tables and keys, laid out as "./Config" is. It need not exist.
struct ConfigLayer {
  enum class Owner {
    kProgram,  ///< what ships
    kSite,     ///< "site" in that folder: whoever set the program up, for all users
    kUser,     ///< "Tevron/Config" in the user's configuration, usually below ~/.config
  };

  bool is_folder() const;

  Owner owner;
  std::string path;
};

/// Where a program looks for tables and keys: layers of the same layout, in the order in which they
/// are read, so that an update of what ships replaces nothing of what others wrote. Where several
/// say something of one model, the last counts.
class ConfigFolder {
 public:
  /// The folder, and the site's in it.
  explicit ConfigFolder(const std::string& path);

  /// The running program's own, and the user's behind it. A home that others keep closed has none.
  static ConfigFolder OfProgram();

  /// The folder that a model's table lies in, as "./Config/varID/Orca.csv" and
  /// "./Config/site/varID/Orca.csv" lie in "./Config"; when that is the program's own, as
  /// OfProgram. The folder keeps the words in which the path names it.
  static ConfigFolder Of(const std::string& table_path);

  /// What ships lies here.
  const std::string& path() const { return layers_.front().path; }
  /// At least two, whether they exist or not.
  const std::vector<ConfigLayer>& layers() const { return layers_; }

  /// The models that can be chosen: those with a table in "varID" of any layer, sorted, each once.
  std::vector<std::string> Models() const;

  /// Path of the model's table: that of the last layer which has one, also one that cannot be read,
  /// else the one that would ship.
  std::string TableOf(const std::string& model) const;

  /// One line for the user: the table that describes the model, and the folders of the site and the
  /// user that there are, with their whole paths.
  std::string Describe(const std::string& model) const;

  /// The files of this name ("auth_config.csv") that exist, in the order in which they are read.
  /// One that cannot be read is among them, as is one of which a link to nothing hides whether it
  /// exists: what it says would count.
  std::vector<std::string> FilesCalled(const std::string& name) const;

  /// Tells of each layer that is there and cannot be read as a folder, or whose tables cannot.
  void CheckLayers(TableFaults* faults) const;

 private:
  void AddUser();

  std::vector<ConfigLayer> layers_;
};
