#include "variables/model_traits.h"

ModelTraits TraitsOf(const std::string& model) {
  ModelTraits traits;
  if (model.rfind("Lumo", 0) == 0) {
    traits.family = SerialFamily::kLumo;
  } else if (model.rfind("Kiva", 0) == 0) {
    traits.family = SerialFamily::kKiva;
  }
  if (model == "Lumo") {
    traits.connect = kSerialPair;
  } else if (model == "Lumo-CMX" || model == "Kiva-CMX") {
    traits.connect = kSerialCmx;
  }
  return traits;
}

const char* TextOf(ConnectType connect_type) {
  switch (connect_type) {
    case kSerialPair:
      return "serial pair";
    case kSerialCmx:
      return "serial line";
    default:
      return "network";
  }
}

const char* TextOf(SerialFamily family) {
  switch (family) {
    case SerialFamily::kLumo:
      return "Lumo";
    case SerialFamily::kKiva:
      return "Kiva";
    default:
      return "none";
  }
}
