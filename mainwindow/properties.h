// The sample properties dialog as the main window and toolbar open it.
#pragma once

namespace velmora {

// File > Properties and the toolbar's Sample button: places the dialog on an
// 800 x 600 screen and shows it modeless.
void openPropertiesDialog();

} // namespace velmora
