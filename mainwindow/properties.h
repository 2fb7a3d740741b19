// The sample properties dialog as the main window and toolbar open it.
#pragma once

#include <string>

namespace velmora {

// File > Properties and the toolbar's Sample button: places the dialog on an
// 800 x 600 screen and shows it modeless.
void openPropertiesDialog();

// The properties as the dialog's boxes hold them (what the report prints);
// all empty while the dialog is not loaded.
struct SampleProperties {
    std::string operatorName, familyName, organization, date, location;
};
SampleProperties currentSampleProperties();

} // namespace velmora
