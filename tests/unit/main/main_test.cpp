// The program's main() when there is no memory for the application object.
#include <gtest/gtest.h>

#include "Application/OrvexApp.h"

// src/main.cpp, whose main() has this name here.
int ServiceMain(int argc, char** argv);

namespace {

constexpr int kFrameworkRan = 77;

}  // namespace

COrvexApp* COrvexApp::CreateAtProgramStart() {
  return nullptr;
}

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* /*application*/) {
  return kFrameworkRan;
}

TEST(Main, AnswersZeroWithoutTheFrameworkWhenThereIsNoApplication) {
  EXPECT_EQ(ServiceMain(0, nullptr), 0);
}
