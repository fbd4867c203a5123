#include "ShopSettings.h"

namespace Shop {

Sales::Sales()
    : Settings("Sales", "What is sold"), currency{this, "Currency", "Of prices", SHOP_CURRENCY} {}

Till::Till()
    : Settings("Till", "A till"),
      number{this, "Number", "Printed on receipts", 1, Orvant::Range{1, 99}} {}

} // namespace Shop
