// SPDX-License-Identifier: MIT
#include <SFML/Audio.hpp>

int main()
{
    const sf::SoundBuffer buffer;
    return buffer.getSampleCount() == 0 ? 0 : 1;
}
