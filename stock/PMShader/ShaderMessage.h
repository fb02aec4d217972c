// ShaderMessage.h -- faults of a shader as a text for the message overlay
#ifndef VORTICADE_SHADER_MESSAGE_H
#define VORTICADE_SHADER_MESSAGE_H

#include <string>

#define MESSAGE_CHARS_MAX 4095 // what the overlay takes

// Rich text: a heading, then the faults, a line each, as many as fit. What files and drivers say stays text: nothing in
// it is taken for markup or for a colour field.
std::u16string FaultMessage(const std::string &heading, const std::string &faults);

#endif
