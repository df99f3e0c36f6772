#pragma once
// The sections of the report, in their order. Each looks at one side of the machine, adds what it found, and changes
// nothing that lasts. Thread: one, with COM initialised.
#include "diagnostics/PersonalData.h"
#include "diagnostics/Report.h"

namespace diagnostics {

// Version and files of the program, and of the system below it.
void AddProgram(Report& report, const PersonalData& personal);
// Driver, algorithm and the settings key, without paths.
void AddSettings(Report& report);
// Every camera of the system, and why the preview takes or refuses it.
void AddCameras(Report& report, const PersonalData& personal);
// The pipe of the camera service.
void AddService(Report& report);
// Folders that the program writes to, and who may.
void AddFolders(Report& report, const PersonalData& personal);
// Size, place, scale and work area of each.
void AddScreens(Report& report);
// Theme, contrast, size of text; mouse, touch and pen.
void AddLook(Report& report);
void AddLog(Report& report, const PersonalData& personal);

}  // namespace diagnostics
