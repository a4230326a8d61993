// The program's main() when the application object has been made.
#include <gtest/gtest.h>

#include "Application/OrvexApp.h"

// src/main.cpp, whose main() has this name here.
int ServiceMain(int argc, char** argv);

namespace {

constexpr int kExitCode = 77;

// Stands for the application object, which main() only hands on.
alignas(COrvexApp) unsigned char g_Application[sizeof(COrvexApp)];

struct FrameworkCall {
  int argc = 0;
  char** argv = nullptr;
  FwEflApplication* application = nullptr;
};
FrameworkCall g_Call;

}  // namespace

COrvexApp* COrvexApp::CreateAtProgramStart() {
  return reinterpret_cast<COrvexApp*>(g_Application);
}

int AppMain(int argc, char** argv, FwEflApplication* application) {
  g_Call = {argc, argv, application};
  return kExitCode;
}

TEST(Main, HandsTheApplicationToTheFrameworkAndAnswersItsExitCode) {
  char name[] = "orvex-service";
  char* arguments[] = {name, nullptr};
  EXPECT_EQ(ServiceMain(1, arguments), kExitCode);
  EXPECT_EQ(g_Call.argc, 1);
  EXPECT_EQ(g_Call.argv, arguments);
  EXPECT_EQ(g_Call.application, reinterpret_cast<COrvexApp*>(g_Application));
}
