// Goes through the cases of TLS for a client on another system: prints port and file of
// authorities, serves a client a case, and fails where one saw or said what it should not.
#include <iostream>

#include "desktop/TlsServer.h"

int main() {
  const auto server = vesko::MakeTlsServer();
  std::cout << server->Port() << " " << server->Authorities() << std::endl;
  int faults = 0;
  for (const vesko::TlsCase& row : vesko::kTlsCases) {
    server->Serve(row);
    const std::string seen = server->Seen();
    if (seen == vesko::ToBeSeen(row)) continue;
    std::cerr << row.name << ": seen \"" << seen << "\"\n";
    ++faults;
  }
  return faults;
}
