#include <VeskoEx/Host.h>

#include <cstdio>

// Checks mail once if the user wants it checked automatically.
int main() try {
  vesko::host::Object mail = vesko::host::Create("VeskoEx.cVeskoEx");
  mail.Call(u"SetFont", u"Sans", 0);
  if (mail.Get(u"IsBusy").ToBool()) return 0;

  const int minutes = mail.Call(u"CheckTime").ToInt();
  std::printf("minutes between checks: %d\n", minutes);
  if (minutes > 0) mail.Call(u"CheckMail");
  return 0;
} catch (const vesko::host::Error& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
