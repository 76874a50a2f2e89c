#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace kavel::lidar::testing {

/// Runs the openssl command line; returns its process. Its output goes to `output`, or nowhere.
inline pid_t SpawnOpenssl(std::vector<std::string> arguments, int output = -1) {
  arguments.insert(arguments.begin(), "openssl");
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (auto& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  if (output != -1) posix_spawn_file_actions_adddup2(&actions, output, 1);
  pid_t process = -1;
  if (posix_spawnp(&process, "openssl", &actions, nullptr, argv.data(), environ) != 0) {
    throw std::runtime_error("the openssl command line is missing");
  }
  posix_spawn_file_actions_destroy(&actions);
  return process;
}

/// A folder with two self-signed certificates and their keys, gone with the object.
class Certificates {
 public:
  Certificates() {
    std::string pattern = std::filesystem::temp_directory_path() / "kavel_tls_XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = pattern;
    for (const std::string name : {"lidar", "other"}) {
      int status = 0;
      waitpid(SpawnOpenssl({"req", "-x509", "-nodes", "-days", "2", "-subj", "/CN=" + name,
                            "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-keyout",
                            Key(name), "-out", Cert(name)}),
              &status, 0);
    }
  }
  ~Certificates() { std::filesystem::remove_all(folder_); }
  Certificates(const Certificates&) = delete;
  Certificates& operator=(const Certificates&) = delete;

  std::string Cert(const std::string& name) const { return folder_ / (name + ".crt"); }
  std::string Key(const std::string& name) const { return folder_ / (name + ".key"); }

 private:
  std::filesystem::path folder_;
};

/// A TLS server that answers each line with its reverse.
class OpensslServer {
 public:
  OpensslServer(const std::string& cert, const std::string& key,
                const std::vector<std::string>& more = {}) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    std::vector<std::string> arguments = {"s_server", "-accept", "127.0.0.1:0", "-rev",
                                          "-cert",    cert,      "-key",        key};
    arguments.insert(arguments.end(), more.begin(), more.end());
    process_ = SpawnOpenssl(arguments, ends[1]);
    close(ends[1]);
    output_ = ends[0];
    ReadPort();
  }
  ~OpensslServer() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    close(output_);
  }
  OpensslServer(const OpensslServer&) = delete;
  OpensslServer& operator=(const OpensslServer&) = delete;

  int port() const { return port_; }

 private:
  // The server announces "ACCEPT 127.0.0.1:PORT" and a line end.
  void ReadPort() {
    const std::string announcement = "ACCEPT 127.0.0.1:";
    std::string text;
    char character = 0;
    while (read(output_, &character, 1) == 1) {
      text += character;
      const size_t at = text.find(announcement);
      if (character == '\n' && at != std::string::npos) {
        port_ = std::stoi(text.substr(at + announcement.size()));
        return;
      }
    }
    throw std::runtime_error("openssl s_server did not start: " + text);
  }

  pid_t process_ = -1;
  int output_ = -1;
  int port_ = 0;
};

}  // namespace kavel::lidar::testing
