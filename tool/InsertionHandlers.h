#pragma once

/// Service instances, service profiles and GRE: what the commands of a kind share.

#include "InsertionRecords.h"

/// What a command does with a service instance: also the number of its request.
enum InstanceOperation : int {
  kCreateInstance = FW_REQUEST_CREATE_INSTANCE,
  kReplaceInstance = FW_REQUEST_REPLACE_INSTANCE,
  kDestroyInstance = FW_REQUEST_DESTROY_INSTANCE,
};

/// Creates, replaces or destroys a service instance. The kernel's status is not read: scripts
/// depend on the 0.
int SetServiceInstance(const char* cmd, int argc, char** argv, int operation);

/// Creates or destroys the service profile of a filter, likewise.
int CreateDestroyProfile(const char* cmd, int argc, char** argv, bool create);

void PrintInstance(const FWServiceInstance_& instance);
void PrintProfile(const FWServiceProfile_& profile);
