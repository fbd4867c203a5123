#include "ShopSettings.h"

#include <iostream>

int main() {
    std::cout << Shop::Sales().currency.get() << '\n';
}
