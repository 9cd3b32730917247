#include <VeskoExTypes.h>
#include <windows.h>

#include <cstdio>
#include <cstring>

// Uses the registered component as early bound hosts do. Prints what is wrong, nothing when all is
// right.

namespace {

int faults = 0;

void Expect(bool true_condition, const char* words) {
  if (true_condition) return;
  std::printf("wrong: %s\n", words);
  ++faults;
}

_cVeskoEx* Create() {
  void* made = nullptr;
  const HRESULT outcome = CoCreateInstance(__uuidof(cVeskoEx), nullptr, CLSCTX_INPROC_SERVER,
                                           __uuidof(_cVeskoEx), &made);
  Expect(outcome == S_OK, "an object is created for its dual interface");
  return static_cast<_cVeskoEx*>(made);
}

void TryMembers(_cVeskoEx* mail) {
  VARIANT_BOOL busy = VARIANT_TRUE;
  Expect(mail->get_IsBusy(&busy) == S_OK && busy == VARIANT_FALSE, "IsBusy");
  LONG minutes = 0;
  Expect(mail->CheckTime(&minutes) == S_OK && minutes == -1, "CheckTime");
  BSTR font = SysAllocString(L"Tahoma");
  VARIANT result;
  std::memset(&result, 0xFF, sizeof result);
  Expect(mail->SetFont(font, 1, &result) == S_OK && result.vt == VT_EMPTY, "SetFont");
  SysFreeString(font);
}

constexpr wchar_t kWindowClass[] = L"VeskoForm";

void CALLBACK CloseWindowShown(HWND, UINT, UINT_PTR, DWORD) {
  if (const HWND shown = FindWindowW(kWindowClass, nullptr)) PostMessageW(shown, WM_CLOSE, 0, 0);
}

void TryWindow(_cVeskoEx* mail) {
  const UINT_PTR timer = SetTimer(nullptr, 0, 50, &CloseWindowShown);
  Expect(mail->Configure() == S_OK, "Configure returns when its window is closed");
  KillTimer(nullptr, timer);
  mail->Release();
  WNDCLASSW left = {};
  Expect(!GetClassInfoW(GetModuleHandleW(L"VeskoEx.dll"), kWindowClass, &left),
         "the last object takes its window classes along");
}

/// What the object tells of itself must be the vtable. A proxy is made from the registered library.
void CompareMembers(ITypeInfo* info) {
  const wchar_t* const kNames[] = {L"IsBusy",    L"SetFont",   L"Configure",
                                   L"CheckTime", L"CheckMail", L"ViewMail"};
  MEMBERID id = 1;
  for (const wchar_t* name : kNames) {
    BSTR found = nullptr;
    Expect(info->GetDocumentation(id, &found, nullptr, nullptr, nullptr) == S_OK && found &&
               lstrcmpW(found, name) == 0,
           "the description names the members by their numbers");
    SysFreeString(found);
    ++id;
  }
}

void TryDescriptions(_cVeskoEx* mail) {
  UINT count = 0;
  ITypeInfo* info = nullptr;
  Expect(mail->GetTypeInfoCount(&count) == S_OK && count == 1, "the object describes itself");
  Expect(mail->GetTypeInfo(1, 0, &info) == DISP_E_BADINDEX && !info, "there is one description");
  if (mail->GetTypeInfo(0, 0, &info) != S_OK) return Expect(false, "GetTypeInfo");
  CompareMembers(info);
  info->Release();
}

void TryUnloading() {
  IClassFactory* factory = nullptr;
  CoGetClassObject(__uuidof(cVeskoEx), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                   reinterpret_cast<void**>(&factory));
  CoFreeUnusedLibrariesEx(0, 0);
  Expect(factory && GetModuleHandleW(L"VeskoEx.dll"), "the library stays while a factory lives");
  if (factory) factory->Release();
  // The first call notes that it is unused, the second one lets it go.
  CoFreeUnusedLibrariesEx(0, 0);
  CoFreeUnusedLibrariesEx(0, 0);
  Expect(!GetModuleHandleW(L"VeskoEx.dll"), "the library goes when nothing lives");
}

/// The component's windows live on the thread of the first apartment, so no other apartment gets an
/// object until the last one is gone.
DWORD WINAPI CreateInSecondApartment(void* first) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  void* made = nullptr;
  Expect(CoCreateInstance(__uuidof(cVeskoEx), nullptr, CLSCTX_INPROC_SERVER, __uuidof(_cVeskoEx),
                          &made) == RPC_E_WRONG_THREAD,
         "a second apartment gets no object while one lives");
  LONG minutes = 0;
  Expect(static_cast<_cVeskoEx*>(first)->CheckTime(&minutes) == RPC_E_WRONG_THREAD,
         "a pointer that was not marshalled is refused");
  CoUninitialize();
  return 0;
}

DWORD WINAPI UseFromAnyThread(void*) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  if (_cVeskoEx* mail = Create()) {
    TryMembers(mail);
    mail->Release();
  }
  CoUninitialize();
  return 0;
}

void RunThread(LPTHREAD_START_ROUTINE step, void* argument) {
  const HANDLE thread = CreateThread(nullptr, 0, step, argument, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
}

}  // namespace

int main() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (_cVeskoEx* mail = Create()) {
    TryMembers(mail);
    TryDescriptions(mail);
    RunThread(&CreateInSecondApartment, mail);
    TryWindow(mail);
    TryUnloading();
    // The object then lives on a thread of the system's, behind a proxy made from the description.
    RunThread(&UseFromAnyThread, nullptr);
  }
  CoUninitialize();
  return faults == 0 ? 0 : 1;
}
