// Of signing in and out.
export const words = {
  signInTitle: "Accedere", userName: "Nome", password: "Password", signIn: "Accedi",
  signOut: "Esci", signedIn: "{0} ({1})", role_view: "sola lettura",
  role_confirm: "può riconoscere", role_engineer: "ingegnere",
  wrongPassword: "Nome e password non corrispondono.",
  tooManyAttempts: "Troppi tentativi. Attendere almeno un minuto.",
  signInFailed: "Accesso non riuscito: {0}",
};
