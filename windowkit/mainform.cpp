#include "windowkit/mainform.h"

#include <utility>

namespace velmora {

namespace {
MainForm* current = nullptr;
std::function<void()>& aboutHandler() {
    static std::function<void()> handler;
    return handler;
}
} // namespace

MainForm* mainForm() {
    return current;
}

void setMainForm(MainForm* form) {
    current = form;
}

QWidget* mainWindowParent() {
    return current ? current->asWidget() : nullptr;
}

void setAboutHandler(std::function<void()> handler) {
    aboutHandler() = std::move(handler);
}

void showAbout() {
    if (aboutHandler()) aboutHandler()();
}

} // namespace velmora
