// Functions of money that is lent, saved and written off. What is paid out is negative.

#include <algorithm>
#include <cmath>

#include "host/jet/expression/expression_functions.h"

namespace sg::jet::detail {
namespace {

using Arguments = std::span<Value>;

constexpr int mostSteps = 40;
constexpr double exactEnough = 1e-11;

double numberOr(Arguments arguments, size_t place, double otherwise) {
    return place < arguments.size() ? numberOf(arguments[place]) : otherwise;
}

Value finite(double value) {
    if (!std::isfinite(value)) {
        throwConversion(L"overflow");
    }
    return value;
}

// A loan or a plan of `periods` equal payments.
struct Annuity {
    double rate = 0;
    double periods = 0;
    double payment = 0;
    double present = 0;
    double future = 0;
    bool atStart = false;  // payments are due when a period begins

    double growth() const { return std::pow(1 + rate, periods); }
    // What a payment of 1 in each period is worth at the end.
    double worthOfPayments() const {
        return rate == 0 ? periods : (atStart ? 1 + rate : 1) * (growth() - 1) / rate;
    }
    // Zero when the five fit together.
    double balance() const { return present * growth() + payment * worthOfPayments() + future; }
    void pay() { payment = -(future + present * growth()) / worthOfPayments(); }
};

// The arguments from `place` on: [present or future value [, due]].
void readRest(Arguments arguments, size_t place, double& value, Annuity& annuity) {
    value = numberOr(arguments, place, 0);
    annuity.atStart = numberOr(arguments, place + 1, 0) != 0;
}

Value fv(Evaluation&, Arguments arguments) {
    Annuity annuity{numberOf(arguments[0]), numberOf(arguments[1]), numberOf(arguments[2])};
    readRest(arguments, 3, annuity.present, annuity);
    return finite(-annuity.balance());
}

Value pv(Evaluation&, Arguments arguments) {
    Annuity annuity{numberOf(arguments[0]), numberOf(arguments[1]), numberOf(arguments[2])};
    readRest(arguments, 3, annuity.future, annuity);
    return finite(-annuity.balance() / annuity.growth());
}

Value pmt(Evaluation&, Arguments arguments) {
    Annuity annuity{numberOf(arguments[0]), numberOf(arguments[1]), 0, numberOf(arguments[2])};
    readRest(arguments, 3, annuity.future, annuity);
    annuity.pay();
    return finite(annuity.payment);
}

Value nper(Evaluation&, Arguments arguments) {
    Annuity annuity{numberOf(arguments[0]), 0, numberOf(arguments[1]), numberOf(arguments[2])};
    readRest(arguments, 3, annuity.future, annuity);
    if (annuity.rate == 0) {
        return finite(-(annuity.present + annuity.future) / annuity.payment);
    }
    const double worth = annuity.payment * (annuity.atStart ? 1 + annuity.rate : 1) / annuity.rate;
    return finite(std::log((worth - annuity.future) / (worth + annuity.present)) /
                  std::log(1 + annuity.rate));
}

// IPmt(rate, period, periods, present [, future [, due]]): the part of a payment that is interest.
double interestOf(Arguments arguments, double& payment) {
    Annuity annuity{numberOf(arguments[0]), numberOf(arguments[2]), 0, numberOf(arguments[3])};
    readRest(arguments, 4, annuity.future, annuity);
    const double period = numberOf(arguments[1]);
    if (!(period >= 1 && period <= annuity.periods)) {
        throwInvalidArgument(L"period");
    }
    annuity.pay();
    payment = annuity.payment;
    if (annuity.atStart && period == 1) {
        return 0;
    }
    Annuity before = annuity;
    before.periods = period - 1;
    before.future = 0;
    const double interest = before.balance() * annuity.rate;
    return -interest / (annuity.atStart ? 1 + annuity.rate : 1);
}

Value ipmt(Evaluation&, Arguments arguments) {
    double payment = 0;
    return finite(interestOf(arguments, payment));
}

Value ppmt(Evaluation&, Arguments arguments) {
    double payment = 0;
    const double interest = interestOf(arguments, payment);
    return finite(payment - interest);
}

// Rate(periods, payment, present [, future [, due [, guess]]]), by the secant method.
Value rate(Evaluation&, Arguments arguments) {
    Annuity annuity{0, numberOf(arguments[0]), numberOf(arguments[1]), numberOf(arguments[2])};
    readRest(arguments, 3, annuity.future, annuity);
    const auto balanceAt = [&](double of) {
        annuity.rate = of;
        return annuity.balance();
    };
    double a = numberOr(arguments, 5, 0.1);
    double b = a == 0 ? 0.01 : a / 2;
    double atA = balanceAt(a);
    for (int i = 0; i < mostSteps; ++i) {
        const double atB = balanceAt(b);
        if (std::abs(b - a) < exactEnough || atB == 0) {
            return finite(b);
        }
        const double next = b - atB * (b - a) / (atB - atA);
        a = b;
        atA = atB;
        b = next;
    }
    throwInvalidArgument(L"Rate");
}

// SLN(cost, salvage, life) and SYD(cost, salvage, life, period): what is written off in a period.
Value sln(Evaluation&, Arguments arguments) {
    return finite((numberOf(arguments[0]) - numberOf(arguments[1])) / numberOf(arguments[2]));
}

Value syd(Evaluation&, Arguments arguments) {
    const double life = numberOf(arguments[2]);
    const double period = numberOf(arguments[3]);
    if (!(period >= 1 && period <= life)) {
        throwInvalidArgument(L"period");
    }
    return finite((numberOf(arguments[0]) - numberOf(arguments[1])) * (life - period + 1) * 2 /
                  (life * (life + 1)));
}

// DDB(cost, salvage, life, period [, factor]): a share of what is left, never below the salvage.
Value ddb(Evaluation&, Arguments arguments) {
    const double cost = numberOf(arguments[0]);
    const double salvage = numberOf(arguments[1]);
    const double life = numberOf(arguments[2]);
    const double period = numberOf(arguments[3]);
    if (!(period >= 1 && period <= life)) {
        throwInvalidArgument(L"period");
    }
    const double left = std::max(0.0, 1 - numberOr(arguments, 4, 2) / life);
    const double before = std::max(salvage, cost * std::pow(left, period - 1));
    const double after = std::max(salvage, cost * std::pow(left, period));
    return finite(std::max(0.0, before - after));
}

constexpr Function functions[] = {
    {L"DDB", 4, 5, NullArguments::GiveNull, ddb},   {L"FV", 3, 5, NullArguments::GiveNull, fv},
    {L"IPmt", 4, 6, NullArguments::GiveNull, ipmt}, {L"NPer", 3, 5, NullArguments::GiveNull, nper},
    {L"Pmt", 3, 5, NullArguments::GiveNull, pmt},   {L"PPmt", 4, 6, NullArguments::GiveNull, ppmt},
    {L"PV", 3, 5, NullArguments::GiveNull, pv},     {L"Rate", 3, 6, NullArguments::GiveNull, rate},
    {L"SLN", 3, 3, NullArguments::GiveNull, sln},   {L"SYD", 4, 4, NullArguments::GiveNull, syd},
};

}  // namespace

std::span<const Function> moneyFunctions() {
    return functions;
}

}  // namespace sg::jet::detail
