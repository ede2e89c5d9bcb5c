// Tarnsysm: planar computational geometry for 2D drafting.
// Windows hosts built on MFC load the library as an extension module; this registers it at load
// and withdraws the registration at unload. Nothing else happens at load time.
#include <afxdllx.h>

static AFX_EXTENSION_MODULE tarnsysmModule = {false, nullptr};

extern "C" int APIENTRY DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    if (!AfxInitExtensionModule(tarnsysmModule, instance))
      return 0;
    new CDynLinkLibrary(tarnsysmModule);
  } else if (reason == DLL_PROCESS_DETACH) {
    AfxTermExtensionModule(tarnsysmModule);
  }
  return 1;
}
