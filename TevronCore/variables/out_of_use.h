#pragma once

#include <string>
#include <unordered_map>

#include "variables/fault_list.h"
#include "variables/table_loader.h"

/// Commands of a table whose payload is not known for certain, each with the reason. What is sent
/// with them, or made of their answer, would be a guess.
class OutOfUse {
 public:
  /// Of several reasons the first counts. Null is no command.
  void Add(const FieldGroup* group, const std::string& reason);

  /// All that reads with this command, whatever payload it is sent with.
  void AddReads(const std::string& command_key, const std::string& reason);

  /// The commands of the rows next to the variable: with a code that is wrong it is missing among
  /// those, which then lie elsewhere. A variable without bytes is missed by none.
  void AddBeside(const LoadedTable& table, const VarInfo& var, const FieldGroup* VarInfo::*group,
                 const std::string& reason);

  /// Takes these commands from the variables and says so. What is no longer read can be written no
  /// longer either, since nobody knows the bytes that the user did not change.
  void Apply(LoadedTable* table, FaultList* faults) const;

 private:
  void AddUnlessBare(const FieldGroup* group, const std::string& reason);
  const std::string* ReasonFor(const FieldGroup& group, bool is_read) const;

  std::unordered_map<const FieldGroup*, std::string> groups_;
  std::unordered_map<std::string, std::string> reads_;
};

/// Takes a command from its variables. What is no longer read can be written no longer either.
void TakeAway(LoadedTable* table, FieldGroup* group, const std::string& reason);

/// Keeps a command from being sent, for the first reason that there is.
void Hinder(FieldGroup* write, const std::string& reason);
