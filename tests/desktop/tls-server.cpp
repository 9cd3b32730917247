// Plays the TLS cases for a client on another system: prints its port and the file of authorities,
// serves one client for each case, and fails when a client did not do what it should.
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
