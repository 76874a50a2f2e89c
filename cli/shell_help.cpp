#include "shell_help.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

/// An option as it is typed.
struct Known {
  std::string name;  ///< "--json"
  std::string type;  ///< of its value; empty for a flag
  std::string text;
};

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
  std::vector<const CLI::App*> commands = app.get_subcommands(nullptr);
  commands.erase(
      std::remove_if(commands.begin(), commands.end(),
                     [](const CLI::App* command) { return command->get_group().empty(); }),
      commands.end());
  return commands;
}

std::vector<Known> OptionsOf(const CLI::App& app) {
  std::vector<Known> options;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      const bool is_flag = option->get_items_expected_max() == 0;
      options.push_back(
          {"--" + name, is_flag ? "" : option->get_type_name(), option->get_description()});
    }
  }
  return options;
}

std::string Joined(const std::vector<Known>& options) {
  std::string text;
  for (const Known& option : options) {
    text += (text.empty() ? "" : " ") + option.name;
  }
  return text;
}

bool Names(const Known& option, std::initializer_list<std::string_view> types) {
  return std::find(types.begin(), types.end(), option.type) != types.end();
}

/// `text` with a backslash before each of `special`.
std::string Escaped(const std::string& text, std::string_view special) {
  std::string escaped;
  for (const char c : text) {
    escaped += special.find(c) == std::string_view::npos ? "" : "\\";
    escaped += c;
  }
  return escaped;
}

std::string SingleQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return quoted + '\'';
}

/// Every option with a value, once.
std::vector<Known> AllWithValues(const CLI::App& app) {
  std::vector<const CLI::App*> parts = CommandsOf(app);
  parts.insert(parts.begin(), &app);
  std::vector<Known> all;
  for (const CLI::App* part : parts) {
    for (const Known& option : OptionsOf(*part)) {
      const bool is_known = std::any_of(all.begin(), all.end(), [&option](const Known& known) {
        return known.name == option.name;
      });
      if (!option.type.empty() && !is_known) {
        all.push_back(option);
      }
    }
  }
  return all;
}

void WriteBash(const CLI::App& app, std::ostream& out) {
  std::string commands;
  for (const CLI::App* command : CommandsOf(app)) {
    commands += (commands.empty() ? "" : " ") + command->get_name();
  }
  out << "# bash completion for tevronctl, made by the program itself\n"
         "_tevronctl() {\n"
         "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}\n"
         "    local word command='' words='"
      << commands << " " << Joined(OptionsOf(app))
      << "'\n"
         "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
         "        case \" "
      << commands
      << " \" in *\" $word \"*) command=$word; break ;; esac\n"
         "    done\n"
         "    case $prev in\n";
  for (const Known& option : AllWithValues(app)) {
    out << "    " << option.name << ") ";
    if (option.type == "MODEL") {
      out << "mapfile -t COMPREPLY < <(compgen -W "
             "\"$(tevronctl models 2>/dev/null | cut -d' ' -f1)\" -- \"$cur\"); ";
    } else if (Names(option, {"FILE", "DIR", "PORT[,PORT]"})) {
      out << "mapfile -t COMPREPLY < <(compgen -f -- \"$cur\"); ";
    }
    out << "return ;;\n";
  }
  out << "    esac\n    case $command in\n";
  for (const CLI::App* command : CommandsOf(app)) {
    out << "    " << command->get_name() << ") words='" << Joined(OptionsOf(*command)) << "' ;;\n";
  }
  out << "    esac\n"
         "    if [[ -z $command || $cur == -* ]]; then\n"
         "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$cur\")\n"
         "    else\n"
         "        mapfile -t COMPREPLY < <(compgen -f -- \"$cur\")\n"
         "    fi\n"
         "}\n"
         "complete -o filenames -F _tevronctl tevronctl\n";
}

void WriteZshArguments(const CLI::App& app, std::ostream& out) {
  for (const Known& option : OptionsOf(app)) {
    std::string spec =
        option.name + (option.type.empty() ? "" : "=") + '[' + Escaped(option.text, "[]:\\") + ']';
    if (!option.type.empty()) {
      spec += ':' + Escaped(option.type, ":[]") + ':';
      spec += option.type == "MODEL"                   ? "_tevronctl_models"
              : option.type == "DIR"                   ? "_files -/"
              : Names(option, {"FILE", "PORT[,PORT]"}) ? "_files"
                                                       : " ";
    }
    out << " \\\n        " << SingleQuoted(spec);
  }
}

void WriteZsh(const CLI::App& app, std::ostream& out) {
  out << "#compdef tevronctl\n"
         "# zsh completion for tevronctl, made by the program itself\n"
         "_tevronctl_models() {\n"
         "    local -a models\n"
         "    models=(${(f)\"$(tevronctl models 2>/dev/null | cut -d' ' -f1)\"})\n"
         "    _describe model models\n"
         "}\n"
         "_tevronctl() {\n"
         "    local curcontext=$curcontext state line\n"
         "    local -a commands\n"
         "    commands=(\n";
  for (const CLI::App* command : CommandsOf(app)) {
    out << "        "
        << SingleQuoted(command->get_name() + ':' + Escaped(command->get_description(), ":"))
        << '\n';
  }
  out << "    )\n    _arguments -C";
  WriteZshArguments(app, out);
  out << " \\\n        '1:command:->command' \\\n        '*::argument:->argument'\n"
         "    case $state in\n"
         "    command) _describe command commands ;;\n"
         "    argument)\n"
         "        case $words[1] in\n";
  for (const CLI::App* command : CommandsOf(app)) {
    out << "        " << command->get_name() << ") _arguments";
    WriteZshArguments(*command, out);
    out << " \\\n        '*:argument:_files' ;;\n";
  }
  out << "        esac ;;\n    esac\n}\n_tevronctl \"$@\"\n";
}

std::string Roff(const std::string& text) { return Escaped(text, "\\-"); }

std::string PositionalsOf(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional()) {
      const bool is_needed = option->get_required();
      text.append(is_needed ? " " : " [").append("\\fI").append(option->get_name(true));
      text.append("\\fR").append(option->get_items_expected_max() > 1 ? " ..." : "");
      text.append(is_needed ? "" : "]");
    }
  }
  return text;
}

void WriteManOptions(const std::vector<Known>& options, std::ostream& out) {
  for (const Known& option : options) {
    out << ".TP\n\\fB" << Roff(option.name) << "\\fR";
    if (!option.type.empty()) {
      out << " \\fI" << Roff(option.type) << "\\fR";
    }
    out << '\n' << Roff(option.text) << ".\n";
  }
}

void WriteManCommands(const CLI::App& app, std::ostream& out) {
  const std::vector<const CLI::App*> commands = CommandsOf(app);
  const auto info = std::find_if(commands.begin(), commands.end(), [](const CLI::App* command) {
    return command->get_name() == "info";
  });
  std::vector<Known> lidar;
  for (const Known& option : OptionsOf(**info)) {
    if (option.name != "--help") {
      lidar.push_back(option);
    }
  }
  out << ".SH LIDAR OPTIONS\nOf every command that talks to a lidar.\n";
  WriteManOptions(lidar, out);
  out << ".SH COMMANDS\n";
  for (const CLI::App* command : commands) {
    out << ".SS \"" << Roff(command->get_name()) << PositionalsOf(*command) << "\"\n"
        << Roff(command->get_description()) << ".\n";
    std::vector<Known> own;
    for (const Known& option : OptionsOf(*command)) {
      const bool is_lidar = std::any_of(lidar.begin(), lidar.end(), [&option](const Known& known) {
        return known.name == option.name && known.text == option.text;
      });
      if (!is_lidar && option.name != "--help") {
        own.push_back(option);
      }
    }
    WriteManOptions(own, out);
  }
}

void WriteMan(const CLI::App& app, std::ostream& out) {
  out << R"(.TH TEVRONCTL 1
.SH NAME
tevronctl \- the work of Tevron's window without the window
.SH SYNOPSIS
\fBtevronctl\fR [\fIOPTION\fR ...] \fICOMMAND\fR [\fIARGUMENT\fR ...]
.SH DESCRIPTION
Connects to one lidar, does one thing, and ends. Results go to standard output and nothing else
does; messages go to standard error, a progress bar only when that is a terminal. No colour is used
when NO_COLOR is set. Values are the texts of the window, whatever the user's language. Names match
whole, or by a beginning that only one has, without regard to case.
.PP
Protected commands are authenticated with the keys of the folder of tables, as in the window. The
window's settings file is read for one thing, the host port last used with a model, and never
written.
.SH OPTIONS
)";
  WriteManOptions(OptionsOf(app), out);
  WriteManCommands(app, out);
  out << R"(.SH EXIT STATUS
.TP
0
Done.
.TP
1
The lidar or the comparison said no.
.TP
2
Wrong usage: of the command line, a name, or a file. Nothing was written.
.TP
3
No connection.
.TP
4
Broken off in the middle; what was done is listed.
.TP
130
Interrupted, with the link closed properly.
.SH FILES
\fIConfig\fR beside the program's \fIbin\fR holds tables and keys. Before apply, reset and upgrade
the settings are kept in \fI~/.local/share/Tevron/snapshots\fR, the newest 50 of each lidar.
.SH SEE ALSO
The page \fItevronctl.md\fR in the documents of Tevron has the keys of JSON and a factory line's
script.
)";
}

}  // namespace

bool WriteShellHelp(const CLI::App& app, const std::string& kind, std::ostream& out) {
  if (kind == "bash") {
    WriteBash(app, out);
  } else if (kind == "zsh") {
    WriteZsh(app, out);
  } else if (kind == "man") {
    WriteMan(app, out);
  } else {
    return false;
  }
  return true;
}
