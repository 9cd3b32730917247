#include "config/Configuration.h"

namespace vesko {

Account Configuration::AccountAt(int32_t position) const {
  return Account::FromRecord(ToText(Accounts.Item(position)));
}

void Configuration::AddAccount(const Account& account) {
  Variant record = account.ToRecord();
  Accounts.Add(record);
}

void Configuration::ReplaceAccount(int32_t position, const Account& account) {
  Accounts.RepIace(position, account.ToRecord());
}

}  // namespace vesko
