// The shared library as a host in another language loads it: by dlopen, with
// nothing but its C entry point. The program links none of the project's
// libraries, so every call goes through the loaded library.

#include "session/c_api.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// The C entry point, looked up by name in the loaded library.
struct Library {
    Library() : handle(dlopen(DBN_C_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}
    ~Library() {
        if (handle != nullptr) {
            dlclose(handle);
        }
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(handle, name));
    }

    void* handle;
};

struct Host {
    std::vector<std::string> boxes;
    int modalRuns = 0;
};

cvl_dbn_callbacks Callbacks(Host& host) {
    cvl_dbn_callbacks callbacks{};
    callbacks.user = &host;
    callbacks.msg_box = [](void* user, const char* text, int, int, const char* title) {
        static_cast<Host*>(user)->boxes.push_back(std::string(title) + ": " + text);
        return static_cast<int>(CVL_DBN_ANSWER_OK);
    };
    callbacks.confirm = [](void*, const char*, const char*) {
        return static_cast<long>(CVL_DBN_CONFIRM_NO_TO_ALL);
    };
    return callbacks;
}

class CLibrary : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(library.handle, nullptr) << dlerror();
        for (const char* name : {"cvl_dbn_create", "cvl_dbn_show_node_editor", "cvl_dbn_release",
                                 "cvl_dbn_set_data_root", "cvl_dbn_form_press", "cvl_dbn_form_pick",
                                 "cvl_dbn_form_type", "cvl_dbn_form_close", "cvl_dbn_form_is_open",
                                 "cvl_dbn_form_text"}) {
            ASSERT_NE(dlsym(library.handle, name), nullptr) << name;
        }
        root = std::filesystem::temp_directory_path() /
               ("dbn_c_library_" + std::to_string(::getpid()));
        std::filesystem::create_directories(root);
        library.Find<decltype(cvl_dbn_set_data_root)>("cvl_dbn_set_data_root")(root.c_str());
    }
    void TearDown() override {
        if (library.handle != nullptr) {
            library.Find<decltype(cvl_dbn_set_data_root)>("cvl_dbn_set_data_root")(nullptr);
        }
        std::filesystem::remove_all(root);
    }

    Library library;
    std::filesystem::path root;
};

TEST_F(CLibrary, CreateRefusesMissingRequiredCallbacks) {
    auto* create = library.Find<decltype(cvl_dbn_create)>("cvl_dbn_create");
    Host host;
    EXPECT_EQ(create(nullptr), nullptr);
    for (const bool withMsgBox : {false, true}) {
        cvl_dbn_callbacks callbacks = Callbacks(host);
        if (withMsgBox) {
            callbacks.confirm = nullptr;
        } else {
            callbacks.msg_box = nullptr;
        }
        EXPECT_EQ(create(&callbacks), nullptr);
    }
}

TEST_F(CLibrary, NullEditorsAndFormsAreHarmless) {
    EXPECT_EQ(library.Find<decltype(cvl_dbn_show_node_editor)>("cvl_dbn_show_node_editor")(nullptr,
                                                                                           1, 1, 1),
              -1);
    library.Find<decltype(cvl_dbn_release)>("cvl_dbn_release")(nullptr);
    EXPECT_EQ(library.Find<decltype(cvl_dbn_form_press)>("cvl_dbn_form_press")(nullptr, "cmdOK"),
              -1);
    EXPECT_EQ(
        library.Find<decltype(cvl_dbn_form_pick)>("cvl_dbn_form_pick")(nullptr, "cmbNode", "DBN 1"),
        -1);
    EXPECT_EQ(library.Find<decltype(cvl_dbn_form_type)>("cvl_dbn_form_type")(nullptr,
                                                                             "txtDescription", "x"),
              -1);
    EXPECT_EQ(library.Find<decltype(cvl_dbn_form_close)>("cvl_dbn_form_close")(nullptr), -1);
    EXPECT_EQ(library.Find<decltype(cvl_dbn_form_is_open)>("cvl_dbn_form_is_open")(nullptr), 0);
    EXPECT_EQ(library.Find<decltype(cvl_dbn_form_text)>("cvl_dbn_form_text")(
                  nullptr, "txtDescription", nullptr, 0),
              -1);
}

TEST_F(CLibrary, WithoutADatabaseTheShowTellsOneErrorAndNeverRunsTheForm) {
    Host host;
    cvl_dbn_callbacks callbacks = Callbacks(host);
    callbacks.run_modal = [](void* user, cvl_dbn_form*) { ++static_cast<Host*>(user)->modalRuns; };
    cvl_dbn_editor* editor = library.Find<decltype(cvl_dbn_create)>("cvl_dbn_create")(&callbacks);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(library.Find<decltype(cvl_dbn_show_node_editor)>("cvl_dbn_show_node_editor")(editor,
                                                                                           1, 1, 1),
              -1);
    library.Find<decltype(cvl_dbn_release)>("cvl_dbn_release")(editor);
    EXPECT_EQ(host.modalRuns, 0);
    ASSERT_EQ(host.boxes.size(), 1U);
    EXPECT_TRUE(host.boxes[0].starts_with("Error: ")) << host.boxes[0];
}

}  // namespace
