// Load and unload of the library.
#include <windows.h>

#include "flash/watchdogs.h"
#include "frame/library_state.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            return frame::LibraryAttach() ? TRUE : FALSE;
        case DLL_PROCESS_DETACH:
            if (processEnds == nullptr) {
                flash::StopWatchdogsAtUnload();
            }
            frame::LibraryDetach();
            return TRUE;
        default:
            return TRUE;
    }
}
