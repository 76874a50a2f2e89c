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
