#include "config/Configuration.h"

namespace vesko {

std::vector<Text> SplitAccount(TextView record) {
  std::vector<Text> fields = Split(record, kCrLf);
  if (fields.size() < kAccountFields) fields.resize(kAccountFields);
  return fields;
}

}  // namespace vesko
