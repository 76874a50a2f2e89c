#include "auth/tls_files.h"

#include "Platform/key_file.h"

namespace {

std::string FileOf(const ConfigFolder& folder, const std::string& model, const char* name) {
  const auto files = folder.FilesCalled(std::string(kTlsFolderName) + '/' + model + '/' + name);
  return files.empty() ? "" : files.back();
}

}  // namespace

kavel::lidar::TlsIdentity TlsFilesOf(const ConfigFolder& folder, const std::string& model) {
  return {FileOf(folder, model, kTlsFileNames[0]), FileOf(folder, model, kTlsFileNames[1]),
          FileOf(folder, model, kTlsFileNames[2]), ""};
}

void CheckTlsFiles(const ConfigFolder& folder, const std::string& model, TableFaults* faults) {
  const kavel::lidar::TlsIdentity files = TlsFilesOf(folder, model);
  std::string problem;
  if (!kavel::lidar::MakeTlsContext(files, &problem)) {
    faults->push_back({0, problem + " The model is not connected until then"});
  }
  if (const std::string warning = kavel::lidar::KeyFileWarning(files.key); !warning.empty()) {
    faults->push_back({0, warning, TableFault::Severity::kWarning, files.key});
  }
}
