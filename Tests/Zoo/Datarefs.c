/* Breaks the rules about datarefs. */
#include "Zoo.h"

static float array[4];

static float GetFloat(void *refcon) {
    (void)refcon;
    return 1;
}

static int GetArray(void *refcon, float *values, int offset, int max) {
    (void)refcon;
    if (!values)
        return 4;
    int count = 0;
    for (; count < max && offset + count < 4; ++count)
        values[count] = array[offset + count] + 1;
    return count;
}

static int GetTooMany(void *refcon, float *values, int offset, int max) {
    const int count = GetArray(refcon, values, offset, max);
    return values ? max + 1 : count;
}

static void SetArray(void *refcon, float *values, int offset, int count) {
    (void)refcon;
    for (int i = 0; i < count && offset + i < 4; ++i)
        array[offset + i] = values[i];
}

static AVSKDataRef PublishFloat(const char *name) {
    return AVSKRegisterDataAccessor(name, AVSKDataTypeFloat, 0, NULL, NULL, GetFloat, NULL, NULL, NULL, NULL, NULL,
                                    NULL, NULL, NULL, NULL, NULL, NULL);
}

static AVSKDataRef PublishArray(const char *name, AVSKGetDatavf_f read) {
    return AVSKRegisterDataAccessor(name, AVSKDataTypeFloatArray, 1, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL,
                                    read, SetArray, NULL, NULL, NULL, NULL);
}

static void LookUpMisspelt(void) { AVSKFindDataRef("sim/flight/altitud"); }
static void LookUpUnknown(void) { AVSKFindDataRef("zoo/nobody/anything"); }
static void LookUpAgain(void) { AVSKFindDataRef("sim/flight/altitude"); }
static void ReadNull(void) { AVSKGetDatai(NULL); }

static void ReadForeignPointer(void) {
    static void *nothing[64];
    AVSKGetDatai((AVSKDataRef)nothing);
}

static void ReadUnpublished(void) {
    AVSKDataRef ref = PublishFloat("zoo/datarefs/gone");
    AVSKUnregisterDataAccessor(ref);
    AVSKGetDataf(ref);
}

static void ReadAsInt(void) { AVSKGetDatai(AVSKFindDataRef("sim/flight/altitude")); }
static void WriteReadOnly(void) { AVSKSetDataf(AVSKFindDataRef("sim/flight/altitude"), 5); }

static void WriteBeyond(void) {
    float values[3] = {1, 2, 3};
    AVSKDataRef ref = PublishArray("zoo/datarefs/array", GetArray);
    AVSKGetDatavf(ref, NULL, 0, 0);
    AVSKSetDatavf(ref, values, 2, 3);
    AVSKUnregisterDataAccessor(ref);
}

static void Take(void) { PublishFloat("sim/flight/altitude"); }
static void UnregisterForeign(void) { AVSKUnregisterDataAccessor(AVSKFindDataRef("sim/flight/altitude")); }
static void PublishBare(void) { AVSKUnregisterDataAccessor(PublishFloat("altitude")); }

static void Promise(void) {
    AVSKUnregisterDataAccessor(AVSKRegisterDataAccessor("zoo/datarefs/promise", AVSKDataTypeFloat | AVSKDataTypeInt, 0,
                                                        NULL, NULL, GetFloat, NULL, NULL, NULL, NULL, NULL, NULL, NULL,
                                                        NULL, NULL, NULL, NULL));
}

static void AnswerTooMany(void) {
    float values[2] = {0, 0};
    AVSKDataRef ref = PublishArray("zoo/datarefs/many", GetTooMany);
    AVSKGetDatavf(ref, values, 0, 2);
    AVSKUnregisterDataAccessor(ref);
}

const Inhabitant kDatarefs[] = {
    {.rule = "dataref-misspelt", .enable = LookUpMisspelt},
    {.rule = "dataref-unknown", .enable = LookUpUnknown},
    {.rule = "dataref-null", .enable = ReadNull},
    {.rule = "dataref-handle", .enable = ReadForeignPointer},
    {.rule = "dataref-unpublished", .enable = ReadUnpublished},
    {.rule = "dataref-type", .enable = ReadAsInt},
    {.rule = "dataref-readonly", .enable = WriteReadOnly},
    {.rule = "dataref-range", .frame = WriteBeyond},
    {.rule = "dataref-taken", .enable = Take},
    {.rule = "dataref-foreign", .enable = UnregisterForeign},
    {.rule = "dataref-lookup", .frame = LookUpAgain},
    {.rule = "dataref-name", .enable = PublishBare},
    {.rule = "dataref-promise", .enable = Promise},
    {.rule = "dataref-answer", .frame = AnswerTooMany},
    {0},
};
