#include "config/Account.h"

#include <array>
#include <vector>

#include "base/RunTimeError.h"
#include "base/Variant.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

/// The order of the fields in a record.
constexpr std::array kFields = {&Account::name,     &Account::server, &Account::user,
                                &Account::password, &Account::port,   &Account::save_password,
                                &Account::unstored};

int32_t NumberOr(int32_t fallback, const Text& text) {
  int32_t number = fallback;
  IgnoreErrors([&] { number = ToInt32(TextView(text)); });
  return number;
}

}  // namespace

Account Account::FromRecord(TextView record) {
  Account account;
  std::vector<Text> values = Split(record, kCrLf);
  values.resize(kFields.size());
  for (size_t i = 0; i < kFields.size(); ++i) account.*kFields[i] = std::move(values[i]);
  return account;
}

Text Account::ToRecord() const {
  std::vector<Text> values;
  values.reserve(kFields.size());
  for (const auto field : kFields) values.push_back(this->*field);
  return Join(values, kCrLf);
}

int32_t Account::PortNumber() const { return NumberOr(kPop3Port, port); }

bool Account::SavesPassword() const { return NumberOr(0, save_password) != 0; }

}  // namespace vesko
