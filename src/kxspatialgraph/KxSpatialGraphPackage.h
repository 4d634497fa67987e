#pragma once

// Entry point the host calls once after loading the package library: registers
// the package's classes with the host. Further calls do nothing.
extern "C" int korvapackage_kxspatialgraph_init();
