#include "lifecycle/global_state.h"

void *ktpLock = nullptr;
int keltoRefCount = 0;
bool keltoInitialized = false;
long glbZELHandle = 0;
void *glbResHandle = nullptr;
void *tableListMutex = nullptr;
void *formTableMutex = nullptr;
void *refCountMutex = nullptr;
MsgTableList *msgTableList = nullptr;
