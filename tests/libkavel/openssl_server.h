#pragma once

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "support/test_folder.h"

namespace kavel::lidar::testing {

/// Two self-signed certificates and their keys, gone with the object.
class Certificates {
 public:
  Certificates() {
    for (const std::string name : {"lidar", "other"}) {
      const std::string command =
          "openssl req -x509 -nodes -days 2 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1"
          " -subj /CN=" +
          name + " -keyout " + Key(name) + " -out " + Cert(name) + " 2>/dev/null";
      if (std::system(command.c_str()) != 0) {  // NOLINT(bugprone-command-processor)
        throw std::runtime_error("the openssl command line is missing");
      }
    }
  }

  std::string Cert(const std::string& name) const { return folder_.path() + "/" + name + ".crt"; }
  std::string Key(const std::string& name) const { return folder_.path() + "/" + name + ".key"; }

 private:
  TestFolder folder_;
};

/// A TLS server that answers each line with its reverse.
class OpensslServer {
 public:
  OpensslServer(const std::string& cert, const std::string& key, const std::string& more = "") {
    // The shell tells its process and becomes the server, which then tells its port.
    const std::string command = "echo $$; exec openssl s_server -accept 127.0.0.1:0 -rev -cert " +
                                cert + " -key " + key + " " + more + " </dev/null 2>/dev/null";
    output_ = popen(command.c_str(), "r");  // NOLINT(bugprone-command-processor)
    char line[200];
    while (output_ != nullptr && std::fgets(line, sizeof line, output_) != nullptr) {
      if (process_ == 0) {
        process_ = std::stoi(line);
      }
      if (std::sscanf(line, "ACCEPT 127.0.0.1:%d", &port_) == 1) {
        return;
      }
    }
    throw std::runtime_error("openssl s_server did not start");
  }
  ~OpensslServer() {
    kill(process_, SIGKILL);
    pclose(output_);
  }
  OpensslServer(const OpensslServer&) = delete;
  OpensslServer& operator=(const OpensslServer&) = delete;

  int port() const { return port_; }

 private:
  FILE* output_ = nullptr;
  pid_t process_ = 0;
  int port_ = 0;
};

}  // namespace kavel::lidar::testing
