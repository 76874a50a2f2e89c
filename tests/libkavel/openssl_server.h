#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "support/test_folder.h"

namespace kavel::lidar::testing {

/// Certificates and their keys, gone with the object: "lidar", "other" and "weak" (its key) are
/// self-signed; "ca" has made "good", "elsewhere" (which names another address), "expired", "early"
/// and "below", an authority that has made "lower".
class Certificates {
 public:
  Certificates() {
    const std::string script = folder_.Write("make", R"sh(
set -e
cd "$(dirname "$0")"
new='-newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes'
for name in lidar other ca; do
  openssl req -x509 $new -days 2 -subj /CN=$name -keyout $name.key -out $name.crt
done
openssl req -x509 -newkey rsa:1024 -nodes -days 2 -subj /CN=weak -keyout weak.key -out weak.crt
openssl pkey -in lidar.key -aes128 -passout pass:word -out encrypted.key
cat >conf <<END
[ca]
default_ca = own
[own]
database = index
new_certs_dir = .
certificate = ca.crt
private_key = ca.key
rand_serial = yes
default_md = sha256
policy = any
[any]
commonName = supplied
END
: >index
make() {
  openssl req $new -subj /CN=$1 -keyout $1.key -out $1.csr
  echo subjectAltName=IP:$2 >$1.ext
  echo basicConstraints=CA:${5:-FALSE} >>$1.ext
  openssl ca -batch -config conf -notext -in $1.csr -out $1.crt -extfile $1.ext \
    -startdate $3 -enddate $4 -cert ${6:-ca}.crt -keyfile ${6:-ca}.key
}
make good 127.0.0.1 20200101000000Z 20981231235959Z
make elsewhere 127.0.0.2 20200101000000Z 20981231235959Z
make expired 127.0.0.1 20200101000000Z 20210101000000Z
make early 127.0.0.1 20980101000000Z 20981231235959Z
make below 127.0.0.3 20200101000000Z 20981231235959Z TRUE
make lower 127.0.0.1 20200101000000Z 20981231235959Z FALSE below
)sh");
    // NOLINTNEXTLINE(bugprone-command-processor)
    if (std::system(("sh " + script + " >/dev/null 2>&1").c_str()) != 0) {
      throw std::runtime_error("the openssl command line is missing");
    }
  }

  std::string Cert(const std::string& name) const { return folder_.path() + "/" + name + ".crt"; }
  std::string Key(const std::string& name) const { return folder_.path() + "/" + name + ".key"; }

 private:
  TestFolder folder_;
};

/// A TLS server.
class OpensslServer {
 public:
  enum class Does {
    kReverse,  ///< answers each line with its reverse
    kRelay,    ///< shows what it hears, and says what it is told to
  };

  OpensslServer(const std::string& cert, const std::string& key, const std::string& more = "",
                Does does = Does::kReverse) {
    const std::string input = folder_.path() + "/input";
    mkfifo(input.c_str(), S_IRUSR | S_IWUSR);
    input_ = open(input.c_str(), O_RDWR | O_CLOEXEC);
    // The shell tells its process and becomes the server, which then tells its port.
    const std::string command = "echo $$; exec openssl s_server -accept 127.0.0.1:0 -cert " + cert +
                                " -key " + key + (does == Does::kReverse ? " -rev " : " ") + more +
                                " <" + input + " 2>/dev/null";
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
    Signal(SIGKILL);
    pclose(output_);
    close(input_);
  }
  OpensslServer(const OpensslServer&) = delete;
  OpensslServer& operator=(const OpensslServer&) = delete;

  uint16_t port() const { return static_cast<uint16_t>(port_); }
  void Signal(int number) const { kill(process_, number); }

  /// Has a relay say this. A line that begins with "R" makes it ask for another handshake instead.
  bool Say(const std::string& bytes) const {
    return write(input_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  }
  /// Waits until a relay has heard these bytes.
  bool Hears(const std::string& bytes) {
    for (int byte = 0; heard_.find(bytes) == std::string::npos; heard_ += static_cast<char>(byte)) {
      byte = std::fgetc(output_);
      if (byte == EOF) {
        return false;
      }
    }
    return true;
  }

 private:
  TestFolder folder_;
  int input_ = -1;
  FILE* output_ = nullptr;
  pid_t process_ = 0;
  int port_ = 0;
  std::string heard_;
};

}  // namespace kavel::lidar::testing
