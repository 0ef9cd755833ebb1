// The table of the state's parts; see State.h. Called by the checks of OpenGL.
#include "State.h"

#include "Context.h"

namespace opengl {
namespace {

constexpr int kUnitCount = 8; // of OpenGL without programs
constexpr int kAttributeCount = 16;

GLenum Unit(int unit) { return GL_TEXTURE0 + static_cast<GLenum>(unit); }

// ---- Text

std::string AsNumber(int value) { return std::to_string(value); }
std::string AsSwitch(int value) { return value != 0 ? "on" : "off"; }
std::string AsUnit(int value) { return "GL_TEXTURE" + std::to_string(value - GL_TEXTURE0); }

std::string AsMode(int value) {
    switch (value) {
    case GL_MODELVIEW:
        return "GL_MODELVIEW";
    case GL_PROJECTION:
        return "GL_PROJECTION";
    case GL_TEXTURE:
        return "GL_TEXTURE";
    default:
        return "GL_COLOR";
    }
}

// "on for 0, 2"
std::string AsSet(int bits) {
    std::string text;
    for (int i = 0; i < kAttributeCount; ++i) {
        if ((bits >> i & 1) != 0)
            text += (text.empty() ? "on for " : ", ") + std::to_string(i);
    }
    return text.empty() ? "off" : text;
}

// ---- Reading and restoring

int ReadNumber(const StatePart &part) {
    GLint value = 0;
    Gl().GetIntegerv(part.name, &value);
    return value;
}

int ReadSwitch(const StatePart &part) { return Gl().IsEnabled(part.name); }
void Switch(const StatePart &part, int was) { (was != 0 ? Gl().Enable : Gl().Disable)(part.name); }
void SwitchArray(const StatePart &part, int was) {
    (was != 0 ? Gl().EnableClientState : Gl().DisableClientState)(part.name);
}

// Calls for each unit with that unit active.
void ForUnits(GLenum name, void (*activate)(GLenum unit), auto call) {
    GLint active = 0;
    Gl().GetIntegerv(name, &active);
    for (int unit = 0; unit < kUnitCount; ++unit) {
        activate(Unit(unit));
        call(unit);
    }
    activate(static_cast<GLenum>(active));
}

int ReadUnits(const StatePart &part) {
    int bits = 0;
    ForUnits(GL_ACTIVE_TEXTURE, Gl().ActiveTexture, [&](int unit) { bits |= Gl().IsEnabled(part.name) << unit; });
    return bits;
}
void SwitchUnits(const StatePart &part, int was) {
    ForUnits(GL_ACTIVE_TEXTURE, Gl().ActiveTexture, [&](int unit) { Switch(part, was >> unit & 1); });
}

int ReadClientUnits(const StatePart &part) {
    int bits = 0;
    ForUnits(GL_CLIENT_ACTIVE_TEXTURE, Gl().ClientActiveTexture,
             [&](int unit) { bits |= Gl().IsEnabled(part.name) << unit; });
    return bits;
}
void SwitchClientUnits(const StatePart &part, int was) {
    ForUnits(GL_CLIENT_ACTIVE_TEXTURE, Gl().ClientActiveTexture, [&](int unit) { SwitchArray(part, was >> unit & 1); });
}

int ReadAttributeArrays(const StatePart &part) {
    int bits = 0;
    for (int i = 0; i < kAttributeCount; ++i) {
        GLint isOn = 0;
        Gl().GetVertexAttribiv(static_cast<GLuint>(i), part.name, &isOn);
        bits |= (isOn & 1) << i;
    }
    return bits;
}
void SwitchAttributeArrays(const StatePart & /*part*/, int was) {
    for (int i = 0; i < kAttributeCount; ++i)
        ((was >> i & 1) != 0 ? Gl().EnableVertexAttribArray : Gl().DisableVertexAttribArray)(static_cast<GLuint>(i));
}

// The target is the unit.
int ReadTexture(const StatePart &part) {
    GLint active = 0;
    Gl().GetIntegerv(GL_ACTIVE_TEXTURE, &active);
    Gl().ActiveTexture(part.target);
    const int texture = ReadNumber(part);
    Gl().ActiveTexture(static_cast<GLenum>(active));
    return texture;
}
void BindTexture(const StatePart &part, int was) {
    GLint active = 0;
    Gl().GetIntegerv(GL_ACTIVE_TEXTURE, &active);
    Gl().ActiveTexture(part.target);
    Gl().BindTexture(GL_TEXTURE_2D, static_cast<GLuint>(was));
    Gl().ActiveTexture(static_cast<GLenum>(active));
}

void RestoreDepth(const StatePart &part, int was, void (*push)(), void (*pop)()) {
    int depth = ReadNumber(part);
    for (; depth > was; --depth)
        pop();
    for (; depth < was; ++depth)
        push();
}

void RestoreAttributes(const StatePart &part, int was) {
    RestoreDepth(
        part, was, [] { Gl().PushAttrib(0); }, Gl().PopAttrib);
}
void RestoreClientAttributes(const StatePart &part, int was) {
    RestoreDepth(
        part, was, [] { Gl().PushClientAttrib(0); }, Gl().PopClientAttrib);
}
void RestoreMatrices(const StatePart &part, int was) {
    GLint mode = 0;
    Gl().GetIntegerv(GL_MATRIX_MODE, &mode);
    Gl().MatrixMode(part.target);
    RestoreDepth(part, was, Gl().PushMatrix, Gl().PopMatrix);
    Gl().MatrixMode(static_cast<GLenum>(mode));
}

void ActivateUnit(const StatePart & /*part*/, int was) { Gl().ActiveTexture(static_cast<GLenum>(was)); }
void ActivateClientUnit(const StatePart & /*part*/, int was) { Gl().ClientActiveTexture(static_cast<GLenum>(was)); }
void SetMode(const StatePart & /*part*/, int was) { Gl().MatrixMode(static_cast<GLenum>(was)); }
void BindArrays(const StatePart & /*part*/, int was) { Gl().BindVertexArray(static_cast<GLuint>(was)); }
void BindBuffer(const StatePart &part, int was) { Gl().BindBuffer(part.target, static_cast<GLuint>(was)); }
void UseProgram(const StatePart & /*part*/, int was) { Gl().UseProgram(static_cast<GLuint>(was)); }
void BindPipeline(const StatePart & /*part*/, int was) { Gl().BindProgramPipeline(static_cast<GLuint>(was)); }
void BindRead(const StatePart & /*part*/, int was) {
    Gl().BindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(was));
}
// One call may have bound both.
void BindDraw(const StatePart &part, int was) {
    GLint read = 0;
    Gl().GetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read);
    const GLenum target = read == ReadNumber(part) ? GL_FRAMEBUFFER : GL_DRAW_FRAMEBUFFER;
    Gl().BindFramebuffer(target, static_cast<GLuint>(was));
}
void SetDepthMask(const StatePart & /*part*/, int was) { Gl().DepthMask(static_cast<GLboolean>(was)); }

// ---- Rows of the table

constexpr StatePart Switched(StateKind kind, const char *what, GLenum name) {
    return {kind, what, name, 0, ReadSwitch, Switch, AsSwitch};
}
constexpr StatePart Array(const char *what, GLenum name) {
    return {StateKind::Arrays, what, name, 0, ReadSwitch, SwitchArray, AsSwitch};
}
constexpr StatePart Buffer(const char *what, GLenum name, GLenum target) {
    return {StateKind::Arrays, what, name, target, ReadNumber, BindBuffer, AsNumber};
}
constexpr StatePart Matrices(const char *what, GLenum name, GLenum mode) {
    return {StateKind::Matrices, what, name, mode, ReadNumber, RestoreMatrices, AsNumber};
}
constexpr StatePart Texture(const char *what, GLenum unit) {
    return {StateKind::Texture, what, GL_TEXTURE_BINDING_2D, unit, ReadTexture, BindTexture, AsNumber};
}

} // namespace

constexpr std::array<StatePart, kStateParts> kState = {{
    {StateKind::Attributes, "the stack of attributes", GL_ATTRIB_STACK_DEPTH, 0, ReadNumber, RestoreAttributes,
     AsNumber},
    {StateKind::Attributes, "the stack of client attributes", GL_CLIENT_ATTRIB_STACK_DEPTH, 0, ReadNumber,
     RestoreClientAttributes, AsNumber},
    {StateKind::Unit, "the active texture unit", GL_ACTIVE_TEXTURE, 0, ReadNumber, ActivateUnit, AsUnit},
    {StateKind::Mode, "the matrix mode", GL_MATRIX_MODE, 0, ReadNumber, SetMode, AsMode},
    Matrices("the modelview stack", GL_MODELVIEW_STACK_DEPTH, GL_MODELVIEW),
    Matrices("the projection stack", GL_PROJECTION_STACK_DEPTH, GL_PROJECTION),
    Matrices("the texture stack", GL_TEXTURE_STACK_DEPTH, GL_TEXTURE),
    // An object of vertex arrays has switches and an element buffer of its own.
    {StateKind::Arrays, "the vertex array object", GL_VERTEX_ARRAY_BINDING, 0, ReadNumber, BindArrays, AsNumber},
    Buffer("the buffer of GL_ARRAY_BUFFER", GL_ARRAY_BUFFER_BINDING, GL_ARRAY_BUFFER),
    Buffer("the buffer of GL_ELEMENT_ARRAY_BUFFER", GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER),
    Buffer("the buffer of GL_PIXEL_PACK_BUFFER", GL_PIXEL_PACK_BUFFER_BINDING, GL_PIXEL_PACK_BUFFER),
    Buffer("the buffer of GL_PIXEL_UNPACK_BUFFER", GL_PIXEL_UNPACK_BUFFER_BINDING, GL_PIXEL_UNPACK_BUFFER),
    {StateKind::Arrays, "the active client texture unit", GL_CLIENT_ACTIVE_TEXTURE, 0, ReadNumber, ActivateClientUnit,
     AsUnit},
    Array("GL_VERTEX_ARRAY", GL_VERTEX_ARRAY),
    Array("GL_NORMAL_ARRAY", GL_NORMAL_ARRAY),
    Array("GL_COLOR_ARRAY", GL_COLOR_ARRAY),
    Array("GL_SECONDARY_COLOR_ARRAY", GL_SECONDARY_COLOR_ARRAY),
    Array("GL_FOG_COORD_ARRAY", GL_FOG_COORD_ARRAY),
    Array("GL_EDGE_FLAG_ARRAY", GL_EDGE_FLAG_ARRAY),
    Array("GL_INDEX_ARRAY", GL_INDEX_ARRAY),
    {StateKind::Arrays, "GL_TEXTURE_COORD_ARRAY", GL_TEXTURE_COORD_ARRAY, 0, ReadClientUnits, SwitchClientUnits, AsSet},
    {StateKind::Arrays, "the array of a vertex attribute", GL_VERTEX_ATTRIB_ARRAY_ENABLED, 0, ReadAttributeArrays,
     SwitchAttributeArrays, AsSet},
    {StateKind::Program, "the program", GL_CURRENT_PROGRAM, 0, ReadNumber, UseProgram, AsNumber},
    {StateKind::Program, "the program pipeline", GL_PROGRAM_PIPELINE_BINDING, 0, ReadNumber, BindPipeline, AsNumber},
    Switched(StateKind::Program, "GL_VERTEX_PROGRAM_ARB", GL_VERTEX_PROGRAM_ARB),
    Switched(StateKind::Program, "GL_FRAGMENT_PROGRAM_ARB", GL_FRAGMENT_PROGRAM_ARB),
    {StateKind::Framebuffer, "the framebuffer", GL_DRAW_FRAMEBUFFER_BINDING, 0, ReadNumber, BindDraw, AsNumber},
    {StateKind::Framebuffer, "the framebuffer that is read", GL_READ_FRAMEBUFFER_BINDING, 0, ReadNumber, BindRead,
     AsNumber},
    Switched(StateKind::Scissor, "GL_SCISSOR_TEST", GL_SCISSOR_TEST),
    Switched(StateKind::Graphics, "GL_FOG", GL_FOG),
    {StateKind::Graphics, "GL_TEXTURE_2D", GL_TEXTURE_2D, 0, ReadUnits, SwitchUnits, AsSet},
    Switched(StateKind::Graphics, "GL_LIGHTING", GL_LIGHTING),
    Switched(StateKind::Graphics, "GL_ALPHA_TEST", GL_ALPHA_TEST),
    Switched(StateKind::Graphics, "GL_BLEND", GL_BLEND),
    Switched(StateKind::Graphics, "GL_DEPTH_TEST", GL_DEPTH_TEST),
    {StateKind::Graphics, "writing of depths", GL_DEPTH_WRITEMASK, 0, ReadNumber, SetDepthMask, AsSwitch},
    Texture("the texture of unit 0", GL_TEXTURE0),
    Texture("the texture of unit 1", GL_TEXTURE1),
    Texture("the texture of unit 2", GL_TEXTURE2),
    Texture("the texture of unit 3", GL_TEXTURE3),
    Texture("the texture of unit 4", GL_TEXTURE4),
    Texture("the texture of unit 5", GL_TEXTURE5),
    Texture("the texture of unit 6", GL_TEXTURE6),
    Texture("the texture of unit 7", GL_TEXTURE7),
}};
static_assert(kState.back().read, "kStateParts is too large");

State ReadState() {
    State state{};
    for (std::size_t i = 0; i < kStateParts; ++i)
        state[i] = kState[i].read(kState[i]);
    return state;
}

} // namespace opengl
