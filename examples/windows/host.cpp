#include <VeskoExTypes.h>  // made from the component's type library
#include <windows.h>

#include <cstdio>
#include <cstring>

// A compiled host, early bound: checks mail, or with /status only asks the component.

namespace {

int Fail(const char* step, HRESULT outcome) {
  std::fprintf(stderr, "%s failed (0x%08lX)\n", step, static_cast<unsigned long>(outcome));
  return 1;
}

HRESULT ShowStatus(_cVeskoEx* mail) {
  LONG minutes = 0;
  const HRESULT known = mail->CheckTime(&minutes);
  if (FAILED(known)) return known;
  VARIANT_BOOL busy = VARIANT_FALSE;
  const HRESULT asked = mail->get_IsBusy(&busy);
  std::printf("Minutes between checks: %ld\nBusy: %s\n", minutes, busy ? "True" : "False");
  return asked;
}

int Run(_cVeskoEx* mail, bool status_only) {
  BSTR font = SysAllocString(L"Tahoma");
  VARIANT nothing;
  const HRESULT set = mail->SetFont(font, 0, &nothing);
  SysFreeString(font);
  if (FAILED(set)) return Fail("SetFont", set);
  const HRESULT shown = ShowStatus(mail);
  if (FAILED(shown)) return Fail("CheckTime or IsBusy", shown);
  if (status_only) return 0;
  const HRESULT checked = mail->CheckMail();
  return FAILED(checked) ? Fail("CheckMail", checked) : 0;
}

}  // namespace

int main(int count, char** arguments) {
  // The component shows its windows on this thread, so it must be a single-threaded apartment.
  const HRESULT entered = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (FAILED(entered)) return Fail("CoInitializeEx", entered);
  _cVeskoEx* mail = nullptr;
  const HRESULT created = CoCreateInstance(__uuidof(cVeskoEx), nullptr, CLSCTX_INPROC_SERVER,
                                           __uuidof(_cVeskoEx), reinterpret_cast<void**>(&mail));
  if (FAILED(created)) return Fail("CoCreateInstance", created);
  const int result = Run(mail, count > 1 && std::strcmp(arguments[1], "/status") == 0);
  mail->Release();
  CoUninitialize();
  return result;
}
